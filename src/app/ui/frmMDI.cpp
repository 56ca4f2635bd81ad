#include "app/ui/frmMDI.h"
#include "app/BoardChoice.h"
#include "app/Caption.h"
#include "app/Text.h"
#include "app/ui/frmComputer.h"
#include "app/ui/frmDelay.h"
#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QPointer>
#include <QGuiApplication>
#include <QScreen>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>

namespace kvr {

frmMDI::frmMDI(AppContext &context, QWidget *parent) : QMainWindow(parent), m_context(context)
{
    setObjectName(QStringLiteral("frmMDI"));
    m_mdi = new QMdiArea(this);
    m_mdi->setObjectName(QStringLiteral("MdiArea"));
    setCentralWidget(m_mdi);
    // Room for an editor and the terminal side by side where the screen allows.
    QSize size(1200, 860);
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        size = size.boundedTo(screen->availableSize() * 0.92);
    resize(size);
    BuildMenus();
    ConnectOptionItems();
    UpdateTicks();
    UpdateMenuState();
    UpdateCaption();
    connect(&context, &AppContext::SettingsWritten, this, [this] {
        UpdateTicks();
        UpdateCaption();
        UpdateMenuState();
    });
}

// Only the frame's own menus: editor windows inside carry items of the same names.
QAction *frmMDI::Item(const QString &controlName) const
{
    return menuBar()->findChild<QAction *>(controlName);
}

QMenu *frmMDI::Menu(const QString &controlName) const
{
    return menuBar()->findChild<QMenu *>(controlName);
}

void frmMDI::UpdateWindowList()
{
    QMenu *menu = Menu(QStringLiteral("mnuWindow"));
    for (QAction *action : menu->actions())
        if (action->property("windowList").toBool())
            delete action;
    int number = 0;
    for (QMdiSubWindow *sub : m_mdi->subWindowList()) {
        if (!sub->isVisible())
            continue;
        if (number == 0)
            menu->addSeparator()->setProperty("windowList", true);
        ++number;
        const QString label = number < 10 ? QStringLiteral("&%1 %2").arg(number).arg(sub->windowTitle())
                                          : QStringLiteral("%1 %2").arg(number).arg(sub->windowTitle());
        QAction *action = menu->addAction(label);
        action->setProperty("windowList", true);
        action->setObjectName(ArrayName(QStringLiteral("mnuWList"), number));
        action->setCheckable(true);
        action->setChecked(sub == m_mdi->activeSubWindow());
        connect(action, &QAction::triggered, this, [this, sub = QPointer<QMdiSubWindow>(sub)] {
            if (sub)
                m_mdi->setActiveSubWindow(sub);
        });
    }
}

void frmMDI::UpdateCaption()
{
    const bool connected = m_tcpConnected ? m_tcpConnected() : false;
    setWindowTitle(CaptionText(m_context.settings, connected, m_linkDown ? m_linkDown() : QString()));
}

void frmMDI::UpdateMenuState()
{
    // A plain terminal has no Forth dictionary to re-flash or zap; the
    // upload item stays, to tell the user why there is nothing to upload.
    const bool development = m_context.settings.computerType != QLatin1String("Terminal");
    for (const char *name : {"mnuPDown", "mnuPFlash", "mnuZap"})
        if (QAction *a = Item(QString::fromLatin1(name)))
            a->setEnabled(development);
    if (QAction *flash = Item(QStringLiteral("mnuPFlash")))
        flash->setEnabled(development && m_context.settings.computerType.left(4) == QLatin1String("4410"));
}

void frmMDI::UpdateTicks()
{
    const Settings &s = m_context.settings;
    const int port = PortNumber(s.commPort);
    for (int n = 0; n <= 20; ++n)
        Item(ArrayName(QStringLiteral("mnuOP"), n))->setChecked(n == port);
    const int timeout = static_cast<int>(Val(s.timeout));
    for (int i = 0; i < 5; ++i)
        Item(ArrayName(QStringLiteral("mnuOTimeoutArray"), i))->setChecked(TimeoutValues[i] == timeout);
    const int baud = static_cast<int>(Val(s.baudRate));
    for (int i = 0; i < 8; ++i)
        Item(ArrayName(QStringLiteral("mnuOBaudArray"), i))->setChecked(BaudValues[i] == baud);
    Item(QStringLiteral("mnuOCapsLock"))->setChecked(s.capsLock.left(2) == QLatin1String("ON"));
}

void frmMDI::ConnectOptionItems()
{
    for (int i = 0; i < 5; ++i)
        connect(Item(ArrayName(QStringLiteral("mnuOTimeoutArray"), i)), &QAction::triggered, this,
                [this, i] { ChooseTimeout(i); });
    for (int i = 0; i < 8; ++i)
        connect(Item(ArrayName(QStringLiteral("mnuOBaudArray"), i)), &QAction::triggered, this,
                [this, i] { ChooseBaud(i); });
    for (int n = 0; n <= 20; ++n)
        connect(Item(ArrayName(QStringLiteral("mnuOP"), n)), &QAction::triggered, this, [this, n] {
            UpdateTicks(); // the link ticks the item once it has switched
            emit PortRequested(n);
        });
    connect(Item(QStringLiteral("mnuODelay")), &QAction::triggered, this, &frmMDI::ShowDelayDialog);
    connect(Item(QStringLiteral("mnuOQuestions")), &QAction::triggered, this, &frmMDI::ShowComputerDialog);
    connect(Item(QStringLiteral("mnuOCBackground")), &QAction::triggered, this,
            [this] { ChooseTerminalColor(false); });
    connect(Item(QStringLiteral("mnuOCText")), &QAction::triggered, this, [this] { ChooseTerminalColor(true); });
    connect(Item(QStringLiteral("mnuOFont")), &QAction::triggered, this, &frmMDI::ChooseFont);
    connect(Item(QStringLiteral("mnuFExit")), &QAction::triggered, this, &QWidget::close);
    connect(Item(QStringLiteral("mnuWCascade")), &QAction::triggered, m_mdi, &QMdiArea::cascadeSubWindows);
    connect(Item(QStringLiteral("mnuWHorizontal")), &QAction::triggered, this,
            [this] { ArrangeTiles(Qt::Horizontal); });
    connect(Item(QStringLiteral("mnuWVertical")), &QAction::triggered, this,
            [this] { ArrangeTiles(Qt::Vertical); });
    connect(Item(QStringLiteral("mnuWArrange")), &QAction::triggered, m_mdi, &QMdiArea::tileSubWindows);
    connect(Item(QStringLiteral("mnuWTerminal")), &QAction::triggered, this, &frmMDI::TerminalRequested);
    connect(Menu(QStringLiteral("mnuWindow")), &QMenu::aboutToShow, this, &frmMDI::UpdateWindowList);
    const QList<QPair<const char *, QString>> absent = {
        {"mnuMWords", QStringLiteral("The Forth words list")},
    };
    for (const auto &[name, what] : absent)
        connect(Item(QString::fromLatin1(name)), &QAction::triggered, this,
                [this, what = what] { ShowNotInstalled(what); });
}

void frmMDI::ChooseTimeout(int index)
{
    m_context.settings.timeout = QString::number(TimeoutValues[index]);
    m_context.WriteSettings();
}

void frmMDI::ChooseBaud(int index)
{
    m_context.settings.baudRate = QString::number(BaudValues[index]);
    m_context.WriteSettings();
}

void frmMDI::ChooseTerminalColor(bool foreground)
{
    const auto color = m_context.prompts.Color(m_context.settings.Color(ColorWindow::Emulator, foreground));
    if (!color)
        return;
    m_context.settings.SetColor(ColorWindow::Emulator, foreground, *color);
    m_context.WriteSettings();
}

void frmMDI::ChooseFont()
{
    const auto font = m_context.prompts.Font(m_context.settings.TextFont());
    if (!font)
        return;
    m_context.settings.SetTextFont(*font);
    m_context.WriteSettings();
}

void frmMDI::ShowDelayDialog()
{
    frmDelay dialog(m_context, this);
    dialog.exec();
}

void frmMDI::ShowComputerDialog()
{
    frmComputer dialog(m_context.settings, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const BoardChoice choice = dialog.Choice();
    const bool switchLink = ApplyBoardChoice(m_context.settings, choice);
    m_context.WriteSettings();
    if (switchLink)
        emit PortRequested(choice.port);
    emit ComputerChanged();
    UpdateCaption();
    UpdateMenuState();
}

void frmMDI::ShowNotInstalled(const QString &what)
{
    m_context.prompts.Message(what + QStringLiteral(" is not installed with this copy of KVR-PC."),
                              PromptIcon::Information);
}

void frmMDI::ArrangeTiles(Qt::Orientation orientation)
{
    QList<QMdiSubWindow *> windows;
    for (QMdiSubWindow *w : m_mdi->subWindowList())
        if (w->isVisible() && !w->isMinimized())
            windows << w;
    if (windows.isEmpty())
        return;
    const QRect area = m_mdi->viewport()->rect();
    const int count = static_cast<int>(windows.size());
    for (int i = 0; i < count; ++i) {
        windows[i]->showNormal();
        if (orientation == Qt::Horizontal) {
            const int h = area.height() / count;
            windows[i]->setGeometry(0, i * h, area.width(), h);
        } else {
            const int w = area.width() / count;
            windows[i]->setGeometry(i * w, 0, w, area.height());
        }
    }
}

void frmMDI::CloseWithoutQuestions()
{
    m_noQuestions = true;
    close();
    QCoreApplication::exit(0);
}

void frmMDI::closeEvent(QCloseEvent *event)
{
    if (!m_noQuestions && m_closeGuard && !m_closeGuard()) {
        event->ignore();
        return;
    }
    // Whatever waits for the board ends now, and a compile stops sending.
    m_context.closing = true;
    if (m_context.busyState == BusyState::Compiling)
        m_context.compileOutcome = CompileOutcome::HaltRequested;
    emit Closing();
    event->accept();
}

} // namespace kvr
