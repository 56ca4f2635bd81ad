#pragma once
// The heart of a compile: each CompileNextLine call opens a due file, ends
// one, or reads one source line and either acts on it on the PC (INCLUDE,
// QUICK, #CONDITION, the #IF family) or sends it to the board and judges the
// single reply line. The run ends when the top-level file name is emptied.
#include "compiler/CompileEvents.h"
#include "compiler/CompileReport.h"
#include "compiler/CompileState.h"
#include "compiler/ReplyReceiver.h"
#include <functional>

namespace kvr {

class AppContext;
class Link;
class RunReplay;
class TerminalHost;

class LineEngine {
public:
    LineEngine(AppContext &context, Link &link, TerminalHost *terminal, CompileReport &report,
               CompileState &state);

    // Built once from the program's folders.
    void SetDefaultSearchPaths(const QString &paths) { m_defaultSearchPaths = paths; }
    // How "QUICK " lines persist the settings; the command line keeps the
    // settings file untouched.
    void SetSettingsWriter(std::function<void()> writer) { m_writeSettings = std::move(writer); }

    // While set, the run compares the lines it would send with an earlier
    // run's record instead of sending them, up to the restart line.
    void SetReplay(RunReplay *replay) { m_replay = replay; }

    void CompileNextLine(QString &fileName);
    // Closes the files of include stack entries 0..(count of compiled files).
    void CloseSourceFiles();

    ReplyReceiver &Receiver() { return m_receiver; }
    CompileEvents &Events() { return m_events; }

private:
    QString Prefix() const;
    void Report(const QString &text, const QString &kind, bool withPosition = true);
    void EndRun(RunEnd why);
    void EndOfFile(QString &fileName);
    void FinishTopLevel(const QString &fileName);
    void QuickLine(const QString &line);
    void IncludeLine(QString &fileName, const QString &line);
    void BoardLine(QString line);
    void HaltTest();
    bool Replaying() const;
    // Reports where a continued run takes over from the replay, once.
    void ResumeIfDue();

    AppContext &m_context;
    Link &m_link;
    TerminalHost *m_terminal;
    CompileReport &m_report;
    CompileState &m_state;
    ReplyReceiver m_receiver;
    QString m_defaultSearchPaths;
    std::function<void()> m_writeSettings;
    CompileEvents m_events;
    RunReplay *m_replay = nullptr;
};

} // namespace kvr
