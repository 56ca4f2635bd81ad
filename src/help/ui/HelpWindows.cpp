#include "help/ui/HelpWindows.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/ui/frmMDI.h"
#include "help/ExternalTools.h"
#include "help/HelpLibrary.h"
#include "help/HelpTopics.h"
#include "help/ui/frmBrowser.h"
#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace kvr {

namespace {

QString BoardVersion()
{
    const QString board = QCoreApplication::applicationDirPath() + QStringLiteral("/kvr-board");
    if (!QFileInfo(board).isExecutable())
        return {};
    QProcess process;
    process.start(board, {QStringLiteral("--version")});
    if (!process.waitForFinished(3000)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

} // namespace

HelpWindows::HelpWindows(AppContext &context, QWidget *frame, QObject *parent)
    : QObject(parent), m_context(context), m_frame(frame)
{
}

void HelpWindows::ConnectFrame(frmMDI &frame)
{
    const QList<QPair<const char *, QString>> pages = {
        {"mnuOnScreen", ContentsTopic},
        {"mnuMkvr4410", QStringLiteral("kvr4410f")},
        {"mnuMkvr6630", QStringLiteral("kvr6630")},
        {"mnuMReadme", QStringLiteral("changes")},
        {"mnuMUpdates", QStringLiteral("romupdates")},
    };
    for (const auto &[name, topic] : pages)
        connect(frame.Item(QString::fromLatin1(name)), &QAction::triggered, this,
                [this, topic = topic] { ShowTopic(topic); });
    Settings &s = m_context.settings;
    connect(frame.Item(QStringLiteral("mnuWebsiteL")), &QAction::triggered, this,
            [this, &s] { OpenAddress(s.websiteAddress, QStringLiteral("The KVR website"), QStringLiteral("Website")); });
    connect(frame.Item(QStringLiteral("mnuWebsiteR")), &QAction::triggered, this, [this, &s] {
        OpenAddress(s.resourcesAddress, QStringLiteral("The KVR resources page"), QStringLiteral("Resources"));
    });
    connect(frame.Item(QStringLiteral("mnuPrices")), &QAction::triggered, this,
            [this, &s] { OpenAddress(s.pricesAddress, QStringLiteral("The price list"), QStringLiteral("Prices")); });
    connect(frame.Item(QStringLiteral("mnuAbout")), &QAction::triggered, this, &HelpWindows::ShowAbout);
    connect(frame.Item(QStringLiteral("mnuFShell")), &QAction::triggered, this, &HelpWindows::StartShell);
    qApp->installEventFilter(this);
}

void HelpWindows::ShowTopic(const QString &topic)
{
    const QString folder = HelpFolder(m_context.paths);
    if (TopicFile(folder, topic).isEmpty()) {
        m_context.prompts.Message(QStringLiteral("The help page \"") + topic
                                      + QStringLiteral("\" is not installed with this copy of KVR-PC."),
                                  PromptIcon::Information);
        return;
    }
    // Under a modal dialog the help window belongs to the dialog, or the
    // dialog would keep the user from it.
    QWidget *owner = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : m_frame;
    if (m_browser && m_browser->parentWidget() != owner) {
        m_browser->deleteLater();
        m_browser = nullptr;
    }
    if (!m_browser)
        m_browser = new frmBrowser(folder, WordListsFolder(m_context.paths), owner);
    m_browser->ShowTopic(topic);
    m_browser->show();
    m_browser->raise();
    m_browser->activateWindow();
}

void HelpWindows::ShowHelpForFocus()
{
    QStringList names;
    for (QObject *o = QApplication::focusWidget(); o; o = o->parent())
        names << o->objectName();
    if (names.isEmpty() && QApplication::activeWindow())
        names << QApplication::activeWindow()->objectName();
    const QString topic = TopicFor(names);
    ShowTopic(topic.isEmpty() ? ContentsTopic : topic);
}

bool HelpWindows::eventFilter(QObject *watched, QEvent *event)
{
    // Plain F1 only: Ctrl+F1 opens the words window.
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_F1 && key->modifiers() == Qt::NoModifier && watched->isWidgetType()) {
            ShowHelpForFocus();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

void HelpWindows::ShowAbout()
{
    AboutFacts facts;
    facts.version = QStringLiteral(KVR_VERSION);
    facts.buildDate = QStringLiteral(__DATE__);
    facts.qtVersion = QStringLiteral(QT_VERSION_STR);
    facts.boardVersion = BoardVersion();
    m_context.prompts.Message(AboutText(facts), PromptIcon::Information);
}

void HelpWindows::StartShell()
{
    const QString configured = m_context.settings.terminalCommand;
    const QStringList command = TerminalCommandLine(configured, qEnvironmentVariable("TERMINAL"), [](const QString &name) {
        return QStandardPaths::findExecutable(name);
    });
    if (command.isEmpty()) {
        m_context.prompts.Message(
            QStringLiteral("No terminal program was found: neither the command set under \"Terminal command\" in "
                           "the [Tools] section of KVR-PC.INI, nor $TERMINAL, nor x-terminal-emulator.")
                + QChar(10) + QChar(10)
                + QStringLiteral("Install a terminal emulator or set one of these, then try again."),
            PromptIcon::Exclamation);
        return;
    }
    QString folder = QDir::homePath();
    const QString current = m_context.settings.currentFile;
    if (current.left(8) != QLatin1String("Not Used")) {
        const QString resolved = QFileInfo(ResolvePath(current)).absolutePath();
        if (QFileInfo(resolved).isDir())
            folder = resolved;
    }
    if (!QProcess::startDetached(command.first(), command.mid(1), folder))
        m_context.prompts.Message(QStringLiteral("The terminal ") + command.first()
                                      + QStringLiteral(" could not be started."),
                                  PromptIcon::Exclamation);
}

void HelpWindows::OpenAddress(const QString &address, const QString &what, const QString &key)
{
    if (address.trimmed().isEmpty()) {
        m_context.prompts.Message(what + QStringLiteral(" has no address set. Give one under \"") + key
                                      + QStringLiteral("\" in the [Tools] section of KVR-PC.INI."),
                                  PromptIcon::Information);
        return;
    }
    if (!QDesktopServices::openUrl(QUrl::fromUserInput(address.trimmed())))
        m_context.prompts.Message(QStringLiteral("No web browser could open ") + address.trimmed()
                                      + QStringLiteral("."),
                                  PromptIcon::Exclamation);
}

} // namespace kvr

namespace kvr {

frmBrowser *HelpWindows::Browser() const
{
    return m_browser;
}

} // namespace kvr
