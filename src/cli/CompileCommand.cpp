#include "cli/CompileCommand.h"
#include "app/AppContext.h"
#include "app/Calibration.h"
#include "app/ConsolePrompts.h"
#include "app/Text.h"
#include "cli/ConsoleTerminal.h"
#include "cli/Interrupts.h"
#include "compiler/CompileDriver.h"
#include "link/Link.h"
#include "link/SerialTransport.h"
#include "link/TcpTransport.h"
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <optional>

namespace kvr {

const char *CompileUsage =
    "Usage: kvr [--settings-dir DIR] compile FILE [--type T] [--port COMn | --remote HOST[:PORT]]\n"
    "                                    [--quick] [--quiet] [--json]\n"
    "\n"
    "Compiles FILE and its INCLUDE files on the board, as F8 in an editor window does.\n"
    "Report lines go to stdout, messages to stderr. Settings come from KVR-PC.INI;\n"
    "the options below apply to this run only and are never written back.\n"
    "\n"
    "  --type T              computer type: 4410ANS, 4410Fig or 6630Fig\n"
    "  --port COMn           the board on serial port COMn\n"
    "  --remote HOST[:PORT]  the board behind a TCP gateway (port 4000 by default)\n"
    "  --quick               quick compile (lines compacted before sending)\n"
    "  --quiet               no beeps, replies collected without display\n"
    "  --json                one JSON object per report line, then a summary\n"
    "                        (lines sent, seconds, outcome, end address, delay)\n"
    "\n"
    "An intercharacter delay still \"-1\" in the settings (a fresh settings folder)\n"
    "is measured for this run as the windowed program measures it at start-up,\n"
    "without writing it; set it once in KVR-PC.INI (or start kvr-pc) to skip that.\n"
    "\n"
    "Exit status: 0 finished, 1 stopped on a fault in the report, 2 board not\n"
    "responding or link failure, 3 bad usage, 4 halted (Ctrl-C).\n";

namespace {

struct Options {
    QString file;
    QString type;
    QString port;
    QString remote;
    bool quick = false;
    bool quiet = false;
    bool json = false;
};

int Usage(const QString &problem)
{
    std::fprintf(stderr, "kvr compile: %s\n\n%s", qPrintable(problem), CompileUsage);
    return ExitUsage;
}

std::optional<QString> CanonicalType(const QString &type)
{
    for (const QString &known : {QStringLiteral("4410ANS"), QStringLiteral("4410Fig"), QStringLiteral("6630Fig"),
                                 QStringLiteral("Terminal")})
        if (known.compare(type, Qt::CaseInsensitive) == 0)
            return known;
    return std::nullopt;
}

QString OutcomeName(RunEnd end)
{
    switch (end) {
    case RunEnd::Finished: return QStringLiteral("finished");
    case RunEnd::FileNotFound: return QStringLiteral("file-not-found");
    case RunEnd::OverLong: return QStringLiteral("over-long");
    case RunEnd::ConditionalError: return QStringLiteral("conditional-error");
    case RunEnd::BoardError: return QStringLiteral("board-error");
    case RunEnd::NotResponding: return QStringLiteral("not-responding");
    case RunEnd::Halted: return QStringLiteral("halted");
    case RunEnd::None: break;
    }
    return QStringLiteral("refused");
}

int ExitFor(RunEnd end)
{
    switch (end) {
    case RunEnd::Finished: return ExitFinished;
    case RunEnd::FileNotFound:
    case RunEnd::OverLong:
    case RunEnd::ConditionalError:
    case RunEnd::BoardError: return ExitFault;
    case RunEnd::NotResponding: return ExitLink;
    case RunEnd::Halted: return ExitHalted;
    case RunEnd::None: break;
    }
    return ExitUsage;
}

void PrintJson(const QJsonObject &object)
{
    std::fprintf(stdout, "%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

// Connects to the gateway; waits up to `limitMs` for the data socket.
bool ConnectTcp(TcpTransport &tcp, const QString &host, quint16 port, int limitMs, QString &error)
{
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&tcp, &TcpTransport::ClientConnected, &loop, &QEventLoop::quit);
    QObject::connect(&tcp, &TcpTransport::ClientError, &loop, [&](const QString &description) {
        error = description;
        loop.quit();
    });
    QObject::connect(&limit, &QTimer::timeout, &loop, [&] {
        error = QStringLiteral("no connection within %1 ms").arg(limitMs);
        loop.quit();
    });
    tcp.Connect(host, port);
    limit.start(limitMs);
    if (!tcp.IsConnected() && error.isEmpty())
        loop.exec();
    return tcp.IsConnected();
}

} // namespace

int RunCompileCommand(const QStringList &arguments, const QString &settingsDir)
{
    Options options;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &a = arguments[i];
        auto value = [&](QString &into) {
            if (i + 1 >= arguments.size())
                return false;
            into = arguments[++i];
            return true;
        };
        if (a == QLatin1String("--type")) {
            if (!value(options.type))
                return Usage(QStringLiteral("--type needs a computer type"));
        } else if (a == QLatin1String("--port")) {
            if (!value(options.port))
                return Usage(QStringLiteral("--port needs COMn"));
        } else if (a == QLatin1String("--remote")) {
            if (!value(options.remote))
                return Usage(QStringLiteral("--remote needs HOST[:PORT]"));
        } else if (a == QLatin1String("--quick")) {
            options.quick = true;
        } else if (a == QLatin1String("--quiet")) {
            options.quiet = true;
        } else if (a == QLatin1String("--json")) {
            options.json = true;
        } else if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            std::fputs(CompileUsage, stdout);
            return ExitFinished;
        } else if (a.startsWith(QLatin1String("--"))) {
            return Usage(QStringLiteral("unknown option '%1'").arg(a));
        } else if (options.file.isEmpty()) {
            options.file = a;
        } else {
            return Usage(QStringLiteral("only one FILE, got '%1' too").arg(a));
        }
    }
    if (options.file.isEmpty())
        return Usage(QStringLiteral("no FILE given"));
    if (!options.port.isEmpty() && !options.remote.isEmpty())
        return Usage(QStringLiteral("--port and --remote exclude each other"));

    Paths paths(settingsDir);
    paths.Prepare();
    ConsolePrompts prompts;
    SystemClock clock;
    AppContext context(paths, prompts, clock);
    context.ReadSettings();
    Settings &settings = context.settings;
    // Not measured yet: measure for this run only, so that characters are
    // paced as the windowed program would pace them. A delay that is set
    // stays as it is.
    const QString notMeasured = QStringLiteral("-1");
    if (settings.delay4410 == notMeasured || settings.delay6630 == notMeasured) {
        Settings measured;
        CalibrateDelay(measured, clock);
        if (settings.delay4410 == notMeasured)
            settings.delay4410 = measured.delay4410;
        if (settings.delay6630 == notMeasured)
            settings.delay6630 = measured.delay6630;
    }

    if (!options.type.isEmpty()) {
        const std::optional<QString> type = CanonicalType(options.type);
        if (!type)
            return Usage(QStringLiteral("unknown computer type '%1'").arg(options.type));
        settings.computerType = *type;
    }
    if (!options.port.isEmpty()) {
        const QString port = options.port.toUpper();
        bool ok = false;
        const int n = port.startsWith(QLatin1String("COM")) ? port.mid(3).toInt(&ok) : 0;
        if (!ok || n < 1 || n > 20)
            return Usage(QStringLiteral("--port takes COM1 to COM20, not '%1'").arg(options.port));
        settings.commPort = port;
    }
    if (!options.remote.isEmpty()) {
        const qsizetype colon = options.remote.lastIndexOf(QLatin1Char(':'));
        QString host = colon < 0 ? options.remote : options.remote.left(colon);
        QString port = colon < 0 ? QStringLiteral("4000") : options.remote.mid(colon + 1);
        bool ok = false;
        const int n = port.toInt(&ok);
        if (host.isEmpty() || !ok || n < 1 || n > 65535)
            return Usage(QStringLiteral("--remote takes HOST[:PORT], not '%1'").arg(options.remote));
        settings.commPort = QStringLiteral("COM0");
        settings.remoteIp = host;
        settings.remotePort = port;
    }
    if (options.quick)
        settings.quickCompile = QStringLiteral("ON");
    if (options.quiet) {
        settings.quiet = QStringLiteral("ON");
        settings.noCompileDisplay = QStringLiteral("ON");
    }

    Link link(context);
    ConsoleTerminal terminal(link);
    CompileReport report(context);
    CompileDriver driver(context, link, &terminal, nullptr, report);
    driver.Engine().SetSettingsWriter({}); // the command line leaves KVR-PC.INI alone

    if (settings.computerType == QLatin1String("Terminal")) {
        driver.TerminalModeMessage();
        return ExitUsage;
    }

    // The logical name of the file, as an editor window's caption has it.
    const QString path = QFileInfo(options.file).absoluteFilePath().toUpper();

    std::unique_ptr<Transport> transport;
    const int connectLimit = static_cast<int>(std::clamp(Val(settings.timeout), 1000.0, 600000.0));
    if (settings.IsTcpMode()) {
        auto tcp = std::make_unique<TcpTransport>();
        QString error;
        const quint16 port = static_cast<quint16>(std::clamp(Val(settings.remotePort), 0.0, 65535.0));
        if (!ConnectTcp(*tcp, settings.remoteIp, port, connectLimit, error)) {
            std::fprintf(stderr, "kvr compile: cannot connect to %s:%u: %s\n", qPrintable(settings.remoteIp),
                         port, qPrintable(error));
            return ExitLink;
        }
        // Nagle's algorithm would hold each line's carriage return back until
        // the board acknowledged the text: 40 ms per line.
        tcp->Client().setSocketOption(QAbstractSocket::LowDelayOption, 1);
        transport = std::move(tcp);
    } else {
        auto serial = std::make_unique<SerialTransport>();
        const QString device = settings.SerialDevice(settings.commPort);
        if (device.isEmpty() || !serial->Open(device, static_cast<qint32>(std::clamp(Val(settings.baudRate), 0.0, 4000000.0)))) {
            std::fprintf(stderr, "kvr compile: cannot open %s (%s): %s\n", qPrintable(settings.commPort),
                         qPrintable(device.isEmpty() ? QStringLiteral("no device bound") : device),
                         qPrintable(serial->ErrorText()));
            return ExitLink;
        }
        transport = std::move(serial);
    }
    link.SetTransport(transport.get());

    QObject::connect(&report, &CompileReport::LineAdded, [&options](const QString &text, const ReportEvent &event) {
        if (options.json) {
            PrintJson({{QStringLiteral("event"), QStringLiteral("report")},
                       {QStringLiteral("file"), event.file},
                       {QStringLiteral("line"), event.line},
                       {QStringLiteral("kind"), event.kind},
                       {QStringLiteral("text"), text}});
        } else {
            std::fprintf(stdout, "%s\n", text.toLocal8Bit().constData());
            std::fflush(stdout);
        }
    });

    InterruptWatcher interrupts;
    QObject::connect(&interrupts, &InterruptWatcher::Interrupted, &driver, [&driver, &context] {
        if (context.busyState == BusyState::Compiling)
            driver.HaltCompile();
    });

    QElapsedTimer elapsed;
    elapsed.start();
    driver.CompileFile(path);
    const double seconds = elapsed.nsecsElapsed() / 1e9;
    const RunEnd end = driver.State().runEnd;
    const int status = ExitFor(end);

    if (options.json) {
        PrintJson({{QStringLiteral("event"), QStringLiteral("summary")},
                   {QStringLiteral("file"), path},
                   {QStringLiteral("lines_sent"), driver.State().linesSent},
                   {QStringLiteral("seconds"), seconds},
                   {QStringLiteral("outcome"), OutcomeName(end)},
                   {QStringLiteral("end_address"), driver.State().endOfProgramAddress.trimmed()},
                   {QStringLiteral("delay"), link.CurrentDelay()},
                   {QStringLiteral("exit"), status}});
    }
    transport->Close();
    return status;
}

} // namespace kvr
