#include "words/ui/WordsWindows.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "editor/EditorHost.h"
#include "editor/FileFilters.h"
#include "words/DatabaseBuilder.h"
#include "words/ui/frmWords.h"
#include <QAction>
#include <QEvent>
#include <QFile>
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
    m_window = new frmWords(context);
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
    connect(m_window, &frmWords::OpenDefinition, this, &WordsWindows::OpenDefinition);
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
    // The sub-window's own destructor sends events too: qobject_cast finds
    // no QMdiSubWindow there, where comparing through the QPointer would
    // downcast a half-destroyed object.
    if (event->type() == QEvent::Hide && !event->spontaneous() && qobject_cast<QMdiSubWindow *>(watched)
        && watched == m_subWindow) {
        m_window->CloseDatabase();
        ActivatePrevious();
    }
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
    QAction *view = definitions->addAction(QStringLiteral("&View database"));
    view->setObjectName(QStringLiteral("mnuDView"));
    view->setParent(definitions);
    connect(view, &QAction::triggered, this, &WordsWindows::ChooseDatabase);
    // Ctrl+F1 belongs to this window alone: every editor window has one.
    auto *words = new QAction(window);
    words->setObjectName(QStringLiteral("actWordAtCaret"));
    words->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F1));
    words->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    window->addAction(words);
    connect(words, &QAction::triggered, this, [this, index] { ShowWordAtCaret(index); });
}

bool WordsWindows::TemplateReady()
{
    const QString type = m_context.settings.computerType;
    if (type == QLatin1String("Terminal"))
        return false;
    const QString path = DatabaseBuilder::TemplatePath(m_context.paths.ProgramFolder(), type);
    QFile probe(ResolvePath(path));
    if (probe.open(QIODevice::ReadOnly))
        return true;
    m_context.prompts.Message(QStringLiteral("The Forth words of computer type ") + type
                                  + QStringLiteral(" are not installed: the file ") + path
                                  + QStringLiteral(" is missing.") + QChar(10)
                                  + QStringLiteral("Install KVR-PC again, or choose another computer type "
                                                   "with Options > KVR computer."),
                              PromptIcon::Information);
    return false;
}

bool WordsWindows::ShowDatabase(const QString &word)
{
    const QString database = m_context.settings.wordsDatabase;
    if (!m_window->ShowList(database)) {
        m_context.prompts.Message(DatabaseBuilder::FaultyDatabaseMessage(database), PromptIcon::Exclamation);
        return false;
    }
    if (m_subWindow)
        m_subWindow->setWindowTitle(m_window->windowTitle());
    BringForward();
    m_window->FocusList();
    if (!word.isEmpty())
        m_window->SelectWord(word);
    return true;
}

void WordsWindows::ShowWordAtCaret(int index)
{
    if (!m_editor || m_builder->Running() || m_context.settings.computerType == QLatin1String("Terminal"))
        return;
    const QString text = m_editor->Text(index);
    const int start = m_editor->SelStart(index);
    const int length = m_editor->SelLength(index);
    // A selection names the word itself; otherwise the caret's word.
    const QString word = length > 0 ? WordAt(text.mid(start, length).trimmed(), 0) : WordAt(text, start);
    ShowDatabase(word);
}

void WordsWindows::BrowseRomWords()
{
    if (m_builder->Running() || !TemplateReady())
        return;
    m_context.settings.wordsDatabase =
        DatabaseBuilder::TemplatePath(m_context.paths.ProgramFolder(), m_context.settings.computerType);
    m_context.WriteSettings();
    ShowDatabase();
}

void WordsWindows::ChooseDatabase()
{
    if (m_builder->Running() || !TemplateReady())
        return;
    const QString chosen = m_context.prompts.OpenFileName(QStringLiteral("Choose Forth words database"),
                                                          QtFilter(QStringLiteral("Database files (*.mdb)|*.mdb")),
                                                          ResolvePath(m_context.settings.wordsDatabase));
    if (chosen.isEmpty())
        return;
    m_context.settings.wordsDatabase = LogicalName(chosen);
    m_context.WriteSettings();
    ShowDatabase();
}

void WordsWindows::OpenDefinition(const QString &file, int line)
{
    if (!m_editor)
        return;
    if (m_editor->ShowLine(file, line))
        return;
    m_editor->OpenFile(file);
    m_editor->ShowLine(file, line);
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
