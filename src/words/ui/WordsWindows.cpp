#include "words/ui/WordsWindows.h"
#include "editor/EditorHost.h"
#include "words/DatabaseBuilder.h"
#include "words/ui/frmWords.h"
#include <QAction>
#include <QEvent>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>

namespace kvr {

WordsWindows::WordsWindows(AppContext &context, EditorHost *editor, QMdiArea *area, QObject *parent)
    : QObject(parent), m_context(context), m_editor(editor), m_area(area),
      m_builder(new DatabaseBuilder(context, this))
{
    m_window = new frmWords;
    if (m_area) {
        m_subWindow = m_area->addSubWindow(m_window);
        // Closing only hides it: the builder reports to it.
        m_subWindow->setAttribute(Qt::WA_DeleteOnClose, false);
        m_subWindow->resize(640, 440);
        m_subWindow->hide();
        m_subWindow->installEventFilter(this);
    }
    if (m_editor)
        connect(m_editor, &EditorHost::EditorCreated, this, &WordsWindows::Install);
    connect(m_builder, &DatabaseBuilder::MakingStarted, this, [this](const QString &text) {
        m_window->ShowMaking(text);
        BringForward();
    });
    connect(m_builder, &DatabaseBuilder::ProgressText, m_window, &frmWords::SetMakingText);
    connect(m_builder, &DatabaseBuilder::MakingEnded, this, [this](const QString &database) {
        m_window->ShowList(database);
        if (m_subWindow)
            m_subWindow->setWindowTitle(m_window->windowTitle());
    });
    connect(m_window, &frmWords::StopRequested, m_builder, &DatabaseBuilder::Stop);
}

WordsWindows::~WordsWindows()
{
    m_builder->Stop();
    if (m_subWindow)
        delete m_subWindow.data();
    else
        delete m_window.data();
}

void WordsWindows::BringForward()
{
    QWidget *window = m_subWindow ? static_cast<QWidget *>(m_subWindow.data()) : m_window.data();
    if (!window)
        return;
    // Closing the sub-window closed frmWords inside it as well.
    m_window->show();
    window->show();
    window->raise();
    if (m_subWindow && m_area)
        m_area->setActiveSubWindow(m_subWindow);
}

bool WordsWindows::eventFilter(QObject *watched, QEvent *event)
{
    // A closed words window leaves no window active: the keys would go to
    // the frame's menu bar instead of the window the user came from.
    if (watched == m_subWindow && event->type() == QEvent::Hide && !event->spontaneous())
        ActivatePrevious();
    return QObject::eventFilter(watched, event);
}

void WordsWindows::ActivatePrevious()
{
    const QList<QMdiSubWindow *> windows = m_area->subWindowList(QMdiArea::ActivationHistoryOrder);
    for (auto it = windows.rbegin(); it != windows.rend(); ++it)
        if (*it != m_subWindow && (*it)->isVisible()) {
            m_area->setActiveSubWindow(*it);
            return;
        }
}

void WordsWindows::Install(int index, QObject *object)
{
    auto *window = qobject_cast<QMainWindow *>(object);
    if (!window)
        return;
    QMenu *definitions = window->findChild<QMenu *>(QStringLiteral("mnuD"));
    if (!definitions) {
        definitions = window->menuBar()->addMenu(QStringLiteral("&Definitions"));
        definitions->setObjectName(QStringLiteral("mnuD"));
    }
    if (definitions->findChild<QAction *>(QStringLiteral("mnuDMake")))
        return;
    QAction *make = definitions->addAction(QStringLiteral("&Make database"));
    make->setObjectName(QStringLiteral("mnuDMake"));
    make->setParent(definitions);
    connect(make, &QAction::triggered, this, [this, index] { MakeDatabase(index); });
    m_makeItems.append(make);
}

void WordsWindows::MakeDatabase(int index)
{
    if (!m_editor || m_builder->Running())
        return;
    // The window's own items stay usable while a build runs; a second build
    // would pull the database away under the first.
    for (const QPointer<QAction> &item : std::as_const(m_makeItems))
        if (item)
            item->setEnabled(false);
    m_builder->MakeDatabase(m_editor->Caption(index));
    for (const QPointer<QAction> &item : std::as_const(m_makeItems))
        if (item)
            item->setEnabled(true);
}

} // namespace kvr
