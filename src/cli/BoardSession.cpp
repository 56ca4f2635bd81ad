#include "cli/BoardSession.h"
#include <cstdio>

namespace kvr {

BoardSession::BoardSession(const QCommandLineParser &parser, const BoardOptions &board, const QString &settingsDir)
    : m_parser(parser), m_board(board),
      m_paths(parser.isSet(board.settingsDir) ? parser.value(board.settingsDir) : settingsDir),
      m_prompts(parser.isSet(board.yes))
{
}

bool BoardSession::Prepare(QString &problem)
{
    m_paths.Prepare();
    m_context = std::make_unique<AppContext>(m_paths, m_prompts, m_clock);
    m_context->ReadSettings();
    MeasureMissingDelays(m_context->settings);
    if (!m_board.Apply(m_parser, m_context->settings, problem))
        return false;
    m_link = std::make_unique<Link>(*m_context);
    m_terminal = std::make_unique<ConsoleTerminal>(*m_link);
    m_report = std::make_unique<CompileReport>(*m_context);
    m_driver = std::make_unique<CompileDriver>(*m_context, *m_link, m_terminal.get(), nullptr, *m_report);
    m_driver->Engine().SetSettingsWriter({}); // the command line leaves KVR-PC.INI alone
    return true;
}

void BoardSession::ReportTroubleOnly()
{
    QObject::connect(m_report.get(), &CompileReport::LineAdded, [](const QString &text, const ReportEvent &event) {
        if (event.kind != QLatin1String("finished") && event.kind != QLatin1String("not-unique"))
            std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    });
}

bool BoardSession::Connect(QString &error)
{
    m_transport = OpenBoardLink(m_context->settings, error);
    if (!m_transport)
        return false;
    m_link->SetTransport(m_transport.get());
    return true;
}

void BoardSession::Disconnect()
{
    if (m_transport)
        m_transport->Close();
}

} // namespace kvr
