#pragma once
// Turns a user command into one compile run: refusals, saving, preparing
// the state, the report and the progress display, one line-engine call per
// source line with a yield in between, and the failing line shown at the end.
#include "compiler/CompileReport.h"
#include "compiler/CompileState.h"
#include "compiler/LineEngine.h"
#include "compiler/RunRecord.h"
#include <QObject>

namespace kvr {

class AppContext;
class EditorHost;
class Link;
class TerminalHost;

class CompileDriver : public QObject {
    Q_OBJECT
public:
    // `editor` may be null (no editor windows: the failing line is not shown).
    CompileDriver(AppContext &context, Link &link, TerminalHost *terminal, EditorHost *editor,
                  CompileReport &report, QObject *parent = nullptr);

    CompileState &State() { return m_state; }
    LineEngine &Engine() { return m_engine; }
    CompileReport &Report() { return m_report; }
    void SetEditorHost(EditorHost *editor) { m_editor = editor; }

    void CompileFile(const QString &path);
    // Finds a board-side program along the search list of the current
    // program; the found name, or empty once the user was told it is missing.
    QString FindProgramFile(const QString &name);
    // Writes the selection of editor window `index` to SELECTED.KVR in the
    // program folder and compiles that.
    void CompileSelection(int index);
    void TerminalModeMessage();
    // Selects the line named by the last report line in the window showing
    // the current file; false when no window shows it.
    bool ShowErrorLine();
    // Opens the file report line `row` names and selects its line; false
    // when the line names no file and line.
    bool ShowReportLine(int row);
    // The editor window last activated by ShowErrorLine (0 = none).
    int LastErrorEditor() const { return m_lastErrorEditor; }

    // The Compile menu of an editor window; `index` is the commanding window.
    void CompileThisWindow(int index);
    void CompileSelected(int index);
    void CompileFromLastDefinition(int index);
    void CompileRecentFile(int index, const QString &name);
    // The toggles take whether the item was checked before the click.
    void ToggleQuickCompile(bool wasChecked);
    void ToggleNoCompileDisplay(bool wasChecked);

    // Continues the compile of `path` that stopped on a board error, from
    // the start of the failing definition, when everything before it is
    // unchanged. Empty when it did (whatever the continued run's outcome);
    // otherwise why not, and nothing was sent.
    QString TryContinue(const QString &path);
    // The Compile menu's Continue: the last run's program (or the current
    // file), offering a compile from the start when it cannot continue.
    void ContinueLastCompile();
    // Where the last run's record is kept.
    QString RunRecordPath() const;

    // F2 in the terminal, an editor or the report: ask the running compile
    // to stop and get the board back to its prompt.
    void HaltCompile();

    QString SelectedFilePath() const;

signals:
    void QuickCompileChanged(bool on);
    void NoCompileDisplayChanged(bool on);
    void RunStarted(const QString &path);
    void RunEnded(kvr::RunEnd why);

private:
    // Where the text of SELECTED.KVR came from: the window and its line
    // that became the file's first line.
    struct SelectionSource {
        int index = 0;
        QString caption;
        int firstLine = 0;
    };

    bool RefuseTerminalMode();
    // Selects `line` of `file` in the window that holds it, or for the
    // selection file in the window the selection was taken from.
    bool ShowSourceLine(const QString &file, int line);
    bool IsSelectionFile(const QString &file) const;

    AppContext &m_context;
    Link &m_link;
    TerminalHost *m_terminal;
    EditorHost *m_editor;
    CompileReport &m_report;
    CompileState m_state;
    LineEngine m_engine;
    int m_lastErrorEditor = 0;
    SelectionSource m_nextSelection;
    SelectionSource m_selection;
    RunRecord m_record;
};

// Start of the last line beginning with ": " at or before `cursor`, or 0.
int LastDefinitionStart(const QString &text, int cursor);

} // namespace kvr
