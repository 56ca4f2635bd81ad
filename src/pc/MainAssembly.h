#pragma once
// Creates the subsystems of the windowed program and connects them to the
// frame's menus and to each other.
#include "app/AppContext.h"
#include "link/Link.h"
#include "pc/CommandLine.h"
#include <QObject>
#include <memory>

namespace kvr {

class CompilerWindows;
class frmMDI;
class frmEmulator;
class EditorHost;
class EditorWindows;
class HelpWindows;
class PromWindows;
class UnravelMenu;
class WordsWindows;

class MainAssembly : public QObject {
    Q_OBJECT
public:
    MainAssembly(AppContext &context, frmMDI &frame, const PcCommandLine &commandLine);

    // Start-up from the first editor window on: the windows, the opening
    // dialogue or the board's start-up commands, the caption.
    void Start();

    Link &BoardLink() { return *m_link; }
    // The terminal window (its logic is the compiler's TerminalHost).
    frmEmulator &TerminalWindow() { return *m_terminal; }
    HelpWindows &Help() { return *m_help; }
    // The pool of editor windows, as the compiler drives it.
    EditorHost &Editors();
    // The desktop session or a signal ends the program: no question can be
    // asked, so changed text goes to numbered backups (said at the next
    // start) and the frame closes as Exit would.
    void EndSession();

private:
    void InstallEditors();
    void InstallTerminal();
    void InstallCompiler();
    void InstallProm();
    void InstallWords();
    void OpenFirstEditorWindow();
    void PlaceTerminal();
    void ShowOpeningDialogue();
    void SwitchPort(int port);
    void ConnectToBoard();
    // The note EndSession left, shown once at the start after it.
    QString SessionNoteFile() const;
    void ShowSessionNote();

    AppContext &m_context;
    frmMDI &m_frame;
    PcCommandLine m_commandLine;
    std::unique_ptr<Link> m_link;
    frmEmulator *m_terminal = nullptr;
    EditorWindows *m_editors = nullptr;
    CompilerWindows *m_compiler = nullptr;
    HelpWindows *m_help = nullptr;
    PromWindows *m_prom = nullptr;
    WordsWindows *m_words = nullptr;
    UnravelMenu *m_unravel = nullptr;
    bool m_ending = false;
};

} // namespace kvr
