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
    // The pool of editor windows, as the compiler drives it.
    EditorHost &Editors();

private:
    void InstallEditors();
    void InstallTerminal();
    void InstallCompiler();
    void InstallWords();
    void OpenFirstEditorWindow();
    void PlaceTerminal();
    void ShowOpeningDialogue();
    void SwitchPort(int port);
    void ConnectToBoard();

    AppContext &m_context;
    frmMDI &m_frame;
    PcCommandLine m_commandLine;
    std::unique_ptr<Link> m_link;
    frmEmulator *m_terminal = nullptr;
    EditorWindows *m_editors = nullptr;
    CompilerWindows *m_compiler = nullptr;
    WordsWindows *m_words = nullptr;
    UnravelMenu *m_unravel = nullptr;
};

} // namespace kvr
