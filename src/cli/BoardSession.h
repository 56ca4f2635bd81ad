#pragma once
// What a `kvr` command that compiles a board-side program needs, set up as
// `kvr compile` sets it up: settings from the settings folder with the
// command's board options on top, the link, and a compile driver without
// windows whose report goes to stderr.
#include "app/AppContext.h"
#include "app/ConsolePrompts.h"
#include "cli/BoardOptions.h"
#include "cli/ConsoleTerminal.h"
#include "compiler/CompileDriver.h"
#include "link/Link.h"
#include <memory>

namespace kvr {

class BoardSession {
public:
    BoardSession(const QCommandLineParser &parser, const BoardOptions &board, const QString &settingsDir);

    // Reads the settings and applies the options; false with `problem` set
    // on a bad option value.
    bool Prepare(QString &problem);
    // Opens the link; false with `error` set.
    bool Connect(QString &error);
    void Disconnect();
    // For commands whose compile is only a step: the report reaches stderr
    // only when something is wrong.
    void ReportTroubleOnly();

    AppContext &Context() { return *m_context; }
    Link &BoardLink() { return *m_link; }
    CompileDriver &Driver() { return *m_driver; }
    ConsoleTerminal &Terminal() { return *m_terminal; }
    CompileReport &Report() { return *m_report; }
    ConsolePrompts &Prompts() { return m_prompts; }

private:
    const QCommandLineParser &m_parser;
    const BoardOptions &m_board;
    Paths m_paths;
    ConsolePrompts m_prompts;
    SystemClock m_clock;
    std::unique_ptr<AppContext> m_context;
    std::unique_ptr<Link> m_link;
    std::unique_ptr<ConsoleTerminal> m_terminal;
    std::unique_ptr<CompileReport> m_report;
    std::unique_ptr<CompileDriver> m_driver;
    std::unique_ptr<Transport> m_transport;
};

} // namespace kvr
