#include "pc/MainAssembly.h"
#include "app/BoardChoice.h"
#include "app/ui/frmComputer.h"
#include "app/ui/frmMDI.h"
#include "compiler/CompileDriver.h"
#include "compiler/CompileProgress.h"
#include "compiler/ui/CompilerWindows.h"
#include "compiler/ui/UnravelMenu.h"
#include "editor/EditorPool.h"
#include "editor/ui/EditorWindows.h"
#include "help/ui/HelpWindows.h"
#include "link/Link.h"
#include "link/StartupCommands.h"
#include "link/ui/frmEmulator.h"
#include "link/ui/frmRemote.h"
#include "prom/ui/PromWindows.h"
#include "prom/ui/frmPROMDown.h"
#include "words/DatabaseBuilder.h"
#include "words/ui/WordsWindows.h"
#include <QMdiArea>
#include <algorithm>
#include <QMdiSubWindow>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QTimer>
#include <QWindow>

namespace kvr {

namespace {
// Lets a shown window reach the screen and paint. The board's start-up
// commands block while they wait for a reply; without this a silent board
// leaves the frame unpainted for the whole time-out.
void PaintBeforeBlocking(QWidget &window)
{
    QWindow *handle = window.windowHandle();
    if (!window.isVisible() || !handle)
        return;
    if (!handle->isExposed()) {
        QEventLoop loop;
        QTimer poll;
        const QDeadlineTimer deadline(2000);
        QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
            if (handle->isExposed() || deadline.hasExpired())
                loop.quit();
        });
        poll.start(10);
        loop.exec();
    }
    // Paints what was added after the first exposure (the child windows).
    QCoreApplication::processEvents();
}
}

MainAssembly::MainAssembly(AppContext &context, frmMDI &frame, const PcCommandLine &commandLine)
    : QObject(&frame), m_context(context), m_frame(frame), m_commandLine(commandLine),
      m_link(std::make_unique<Link>(context))
{
    m_help = new HelpWindows(context, &frame, this);
    m_help->ConnectFrame(frame);
    InstallTerminal();
    InstallEditors();
    InstallCompiler();
    InstallProm();
    InstallWords();
    connect(&m_frame, &frmMDI::PortRequested, this, &MainAssembly::SwitchPort);
}

void MainAssembly::InstallEditors()
{
    m_editors = new EditorWindows(m_context, m_frame.MdiArea(), this);
    m_editors->ConnectFrame(&m_frame);
    EditorPool &pool = m_editors->Pool();
    Terminal &terminal = m_terminal->Logic();
    connect(&terminal, &Terminal::OpenInEditor, &pool, &EditorPool::DisplayFile);
    connect(&pool, &EditorPool::HaltRequested, &terminal, &Terminal::SendInterrupt);
    // Tab brings the terminal back when its title-bar button hid it.
    connect(&pool, &EditorPool::TerminalFocusRequested, m_terminal, &frmEmulator::BringForward);
    connect(&pool, &EditorPool::ExitRequested, &m_frame, &QWidget::close);
    connect(m_frame.Item(QStringLiteral("mnuFExtEditor")), &QAction::triggered, &pool,
            &EditorPool::StartExternalEditor);
    connect(&pool, &EditorPool::HelpRequested, m_help, &HelpWindows::ShowTopic);
    // Exit asks about every changed editor window; Cancel abandons it.
    m_frame.SetCloseGuard([&pool] { return pool.CloseAll(); });
}

EditorHost &MainAssembly::Editors()
{
    return m_editors->Pool();
}

void MainAssembly::InstallTerminal()
{
    m_terminal = new frmEmulator(m_context, *m_link);
    QMdiSubWindow *window = m_frame.MdiArea()->addSubWindow(m_terminal);
    window->setWindowTitle(m_terminal->windowTitle());
    window->resize(m_terminal->sizeHint() + QSize(8, 30));
    LinkController &controller = m_terminal->Controller();
    Terminal &terminal = m_terminal->Logic();
    // A simulated board for this run is reached without a heartbeat.
    if (!m_commandLine.simulatorHost.isEmpty())
        controller.Tcp().SetHeartbeatPort(0);
    m_frame.SetTcpConnectedProvider([&controller] { return controller.IsTcpConnected(); });
    m_frame.SetLinkDownProvider([&controller] { return controller.DownReason(); });
    connect(&controller, &LinkController::PortChanged, &m_frame, &frmMDI::UpdateTicks);
    connect(&m_frame, &frmMDI::TerminalRequested, m_terminal, &frmEmulator::BringForward);
    connect(&controller, &LinkController::CaptionChanged, &m_frame, &frmMDI::UpdateCaption);
    for (int i = 0; i < 8; ++i)
        connect(m_frame.Item(frmMDI::ArrayName(QStringLiteral("mnuOBaudArray"), i)), &QAction::triggered,
                &controller, &LinkController::ApplyBaudRate);
    connect(m_frame.Item(QStringLiteral("mnuFCapture")), &QAction::triggered, &terminal, &Terminal::ToggleCapture);
    connect(m_frame.Item(QStringLiteral("mnuZap")), &QAction::triggered, &terminal, &Terminal::Zap);
    connect(m_frame.Item(QStringLiteral("mnuOCapsLock")), &QAction::triggered, &terminal, &Terminal::ToggleCapsLock);
    connect(m_frame.Item(QStringLiteral("mnuIP")), &QAction::triggered, this, [this] {
        frmRemote dialog(m_context, m_terminal->Controller(), &m_frame);
        dialog.exec();
    });
    connect(&terminal, &Terminal::HelpRequested, this,
            [this] { m_help->ShowTopic(QStringLiteral("interactivewindow")); });
    connect(&terminal, &Terminal::FocusEditorRequested, this, [this] {
        const QList<QMdiSubWindow *> windows = m_frame.MdiArea()->subWindowList(QMdiArea::ActivationHistoryOrder);
        for (auto it = windows.rbegin(); it != windows.rend(); ++it)
            if ((*it)->widget() != m_terminal && (*it)->isVisible()) {
                m_frame.MdiArea()->setActiveSubWindow(*it);
                return;
            }
    });
    window->show();
}

void MainAssembly::InstallCompiler()
{
    m_compiler = new CompilerWindows(m_context, *m_link, &m_terminal->Logic(), &m_editors->Pool(), m_frame.MdiArea(),
                                      this);
    connect(m_compiler, &CompilerWindows::HelpRequested, m_help, &HelpWindows::ShowTopic);
    connect(m_compiler, &CompilerWindows::FrameCommand, this, [this](const QString &name) {
        if (QAction *item = m_frame.Item(name))
            item->trigger();
    });
    // A link lost under a compile is named in its report, next to the
    // not-responding line the compile writes.
    connect(&m_terminal->Controller(), &LinkController::LinkStateChanged, this, [this](const QString &reason) {
        if (!reason.isEmpty() && m_context.busyState == BusyState::Compiling)
            m_compiler->Driver().Report().AddReportLine(QStringLiteral("LINK DOWN: ") + reason);
    });
    // The terminal's title bar tells how far a compile has come.
    if (QWidget *terminalWindow = m_terminal->parentWidget()) {
        const QString title = terminalWindow->windowTitle();
        connect(&m_compiler->Progress(), &CompileProgress::Updated, terminalWindow,
                [terminalWindow, title](const QString &text) {
                    terminalWindow->setWindowTitle(text.isEmpty() ? title : title + QStringLiteral(" - ") + text);
                });
    }
    // Closing the program stops a compile: the interrupt goes out, nothing
    // more is sent, and no wait holds the program back.
    connect(&m_frame, &frmMDI::Closing, this, [this] {
        if (m_context.busyState == BusyState::Compiling)
            m_compiler->Driver().HaltCompile();
    });
}

void MainAssembly::InstallProm()
{
    m_prom = new PromWindows(m_context, *m_link, m_compiler->Driver(), m_compiler->Report(), &m_terminal->Logic(),
                             &m_frame, this);
    connect(m_frame.Item(QStringLiteral("mnuPUp")), &QAction::triggered, m_prom, &PromWindows::ShowUpload);
    connect(m_frame.Item(QStringLiteral("mnuPFlash")), &QAction::triggered, m_prom, &PromWindows::ShowReflash);
    connect(m_prom, &PromWindows::HelpRequested, m_help, &HelpWindows::ShowTopic);
    connect(m_frame.Item(QStringLiteral("mnuPDown")), &QAction::triggered, this, [this] {
        frmPROMDown dialog(m_context, &m_frame);
        dialog.exec();
    });
    connect(&m_frame, &frmMDI::Closing, m_prom, &PromWindows::StopAll);
}

void MainAssembly::InstallWords()
{
    m_words = new WordsWindows(m_context, &m_editors->Pool(), m_frame.MdiArea(), this);
    m_unravel = new UnravelMenu(m_context, m_editors->Pool(), this);
    // Closing the program stops a build before its next line.
    connect(&m_frame, &frmMDI::Closing, &m_words->Builder(), &DatabaseBuilder::Stop);
    connect(m_frame.Item(QStringLiteral("mnuDView")), &QAction::triggered, m_words, &WordsWindows::ChooseDatabase);
    connect(m_frame.Item(QStringLiteral("mnuMWords")), &QAction::triggered, m_words, &WordsWindows::BrowseRomWords);
    // Ctrl+Space in the terminal completes from the current database.
    m_terminal->Logic().SetCompleter([this, completer = std::make_shared<WordCompleter>()](const QString &line) {
        return completer->Complete(m_context.settings.wordsDatabase, line);
    });
}

void MainAssembly::OpenFirstEditorWindow()
{
    EditorPool &pool = m_editors->Pool();
    const QString current = m_context.settings.currentFile;
    if (current.left(8) != QLatin1String("Not Used"))
        pool.OpenFile(current);
    if (pool.OpenIndexes().isEmpty())
        pool.FileNew();
}

void MainAssembly::SwitchPort(int port)
{
    m_terminal->Controller().SelectPort(port);
}

void MainAssembly::ConnectToBoard()
{
    LinkController &controller = m_terminal->Controller();
    if (m_context.settings.IsTcpMode()) {
        if (!controller.IsTcpConnected())
            controller.ConnectRemote();
        QCoreApplication::processEvents();
        if (!controller.IsTcpConnected())
            return;
        m_link->Pause(0.8);
    }
    // No port open: nothing to greet (the open has said why already).
    if (!m_link->CurrentTransport() || !m_link->CurrentTransport()->IsUsable())
        return;
    // The terminal comes forward first: keys typed while the board is being
    // greeted go to it once the greeting is over.
    m_terminal->BringForward();
    SendStartupCommands(*m_link, m_terminal->Logic());
    m_terminal->BringForward();
}

void MainAssembly::ShowOpeningDialogue()
{
    frmOpening dialog(m_context.settings, &m_frame);
    const int outcome = dialog.exec();
    const QString showAgain = dialog.ShowAgain() ? QStringLiteral("ON") : QStringLiteral("OFF");
    const bool showChanged = showAgain != m_context.settings.openingDialogue;
    m_context.settings.openingDialogue = showAgain;
    if (outcome == frmOpening::Skip) {
        if (showChanged)
            m_context.WriteSettings();
        return;
    }
    const BoardChoice choice = dialog.Choice();
    const bool switchLink = ApplyBoardChoice(m_context.settings, choice);
    m_context.WriteSettings();
    if (switchLink)
        SwitchPort(choice.port);
    else
        ConnectToBoard();
    if (outcome == frmOpening::OpenFile)
        if (QAction *open = m_frame.Item(QStringLiteral("mnuFOpen")))
            open->trigger();
}

void MainAssembly::PlaceTerminal()
{
    // Bottom right, so the first editor window (top left) stays in view.
    const QRect area = m_frame.MdiArea()->viewport()->rect();
    for (QMdiSubWindow *window : m_frame.MdiArea()->subWindowList())
        if (window->widget() == m_terminal) {
            const QSize size = window->size().boundedTo(area.size());
            window->move(std::max(0, area.width() - size.width()), std::max(0, area.height() - size.height()));
        }
}

QString MainAssembly::SessionNoteFile() const
{
    return QFileInfo(m_context.paths.SettingsFile()).absolutePath() + QStringLiteral("/UNSAVED.TXT");
}

void MainAssembly::EndSession()
{
    if (m_ending)
        return;
    m_ending = true;
    const QStringList kept = m_editors->Pool().KeepChangedTextAsBackups();
    if (!kept.isEmpty()) {
        QFile note(SessionNoteFile());
        if (note.open(QIODevice::Append | QIODevice::Text))
            note.write((kept.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8());
    }
    m_frame.CloseWithoutQuestions();
}

void MainAssembly::ShowSessionNote()
{
    QFile note(SessionNoteFile());
    if (!note.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    const QString kept = QString::fromUtf8(note.readAll()).trimmed();
    note.close();
    note.remove();
    if (kept.isEmpty())
        return;
    const QChar lf(10);
    m_context.prompts.Message(QStringLiteral("KVR-PC was ended by the system while text was not saved.") + lf + lf
                                  + kept + lf + lf
                                  + QStringLiteral("Restore in the editor's File menu brings a backup back."),
                              PromptIcon::Information);
}

void MainAssembly::Start()
{
    // The terminal's load handler opens the configured link first.
    m_terminal->Load();
    OpenFirstEditorWindow();
    PlaceTerminal();
    PaintBeforeBlocking(m_frame);
    ShowSessionNote();
    if (!m_commandLine.simulatorHost.isEmpty())
        ConnectToBoard();
    else if (m_context.settings.openingDialogue != QLatin1String("OFF"))
        ShowOpeningDialogue();
    else
        ConnectToBoard();
    if (m_context.settings.wordsDatabase == NotUsed) {
        const QString current = m_context.settings.currentFile;
        m_context.settings.wordsDatabase =
            current.left(8) == QLatin1String("Not Used")
                ? m_context.paths.ProgramFolder() + QStringLiteral("KVR-PC.MDB")
                : current.left(current.size() - 4) + QStringLiteral(".MDB");
    }
    m_frame.UpdateCaption();
    m_frame.UpdateMenuState();
}

} // namespace kvr
