#include "cli/BoardOptions.h"
#include "app/Calibration.h"
#include "app/Clock.h"
#include "app/Text.h"
#include "link/SerialTransport.h"
#include "link/TcpTransport.h"
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <optional>

namespace kvr {

namespace {

std::optional<QString> CanonicalType(const QString &type)
{
    for (const QString &known : {QStringLiteral("4410ANS"), QStringLiteral("4410Fig"), QStringLiteral("6630Fig"),
                                 QStringLiteral("Terminal")})
        if (known.compare(type, Qt::CaseInsensitive) == 0)
            return known;
    return std::nullopt;
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

BoardOptions::BoardOptions(QCommandLineParser &parser)
{
    parser.addOptions({settingsDir, type, port, remote, quiet, yes, help});
}

bool BoardOptions::Apply(const QCommandLineParser &parser, Settings &settings, QString &problem) const
{
    if (parser.isSet(port) && parser.isSet(remote)) {
        problem = QStringLiteral("--port and --remote exclude each other");
        return false;
    }
    if (parser.isSet(type)) {
        const std::optional<QString> canonical = CanonicalType(parser.value(type));
        if (!canonical) {
            problem = QStringLiteral("unknown computer type '%1'").arg(parser.value(type));
            return false;
        }
        settings.computerType = *canonical;
    }
    if (parser.isSet(port)) {
        const QString name = parser.value(port).toUpper();
        bool ok = false;
        const int n = name.startsWith(QLatin1String("COM")) ? name.mid(3).toInt(&ok) : 0;
        if (!ok || n < 1 || n > 20) {
            problem = QStringLiteral("--port takes COM1 to COM20, not '%1'").arg(parser.value(port));
            return false;
        }
        settings.commPort = name;
    }
    if (parser.isSet(remote)) {
        const QString address = parser.value(remote);
        const qsizetype colon = address.lastIndexOf(QLatin1Char(':'));
        const QString host = colon < 0 ? address : address.left(colon);
        const QString number = colon < 0 ? QStringLiteral("4000") : address.mid(colon + 1);
        bool ok = false;
        const int n = number.toInt(&ok);
        if (host.isEmpty() || !ok || n < 1 || n > 65535) {
            problem = QStringLiteral("--remote takes HOST[:PORT], not '%1'").arg(address);
            return false;
        }
        settings.commPort = QStringLiteral("COM0");
        settings.remoteIp = host;
        settings.remotePort = number;
    }
    if (parser.isSet(quiet)) {
        settings.quiet = QStringLiteral("ON");
        settings.noCompileDisplay = QStringLiteral("ON");
    }
    return true;
}

void MeasureMissingDelays(Settings &settings)
{
    // Measured as the windowed program measures them, so that characters
    // are paced alike; a delay that is set stays as it is.
    const QString notMeasured = QStringLiteral("-1");
    if (settings.delay4410 != notMeasured && settings.delay6630 != notMeasured)
        return;
    SystemClock clock;
    Settings measured;
    CalibrateDelay(measured, clock);
    if (settings.delay4410 == notMeasured)
        settings.delay4410 = measured.delay4410;
    if (settings.delay6630 == notMeasured)
        settings.delay6630 = measured.delay6630;
}

std::unique_ptr<Transport> OpenBoardLink(const Settings &settings, QString &error)
{
    const int connectLimit = static_cast<int>(std::clamp(Val(settings.timeout), 1000.0, 600000.0));
    if (settings.IsTcpMode()) {
        auto tcp = std::make_unique<TcpTransport>();
        const quint16 port = static_cast<quint16>(std::clamp(Val(settings.remotePort), 0.0, 65535.0));
        QString reason;
        if (!ConnectTcp(*tcp, settings.remoteIp, port, connectLimit, reason)) {
            error = QStringLiteral("cannot connect to %1:%2: %3").arg(settings.remoteIp).arg(port).arg(reason);
            return nullptr;
        }
        // Nagle's algorithm would hold each line's carriage return back until
        // the board acknowledged the text: 40 ms per line.
        tcp->Client().setSocketOption(QAbstractSocket::LowDelayOption, 1);
        return tcp;
    }
    auto serial = std::make_unique<SerialTransport>();
    const QString device = settings.SerialDevice(settings.commPort);
    const qint32 baud = static_cast<qint32>(std::clamp(Val(settings.baudRate), 0.0, 4000000.0));
    if (device.isEmpty() || !serial->Open(device, baud)) {
        error = QStringLiteral("cannot open %1 (%2): %3")
                    .arg(settings.commPort, device.isEmpty() ? QStringLiteral("no device bound") : device,
                         serial->ErrorText());
        return nullptr;
    }
    return serial;
}

int UsageError(const QString &command, const QString &problem, const QString &help)
{
    std::fprintf(stderr, "%s: %s\n\n%s", qPrintable(command), qPrintable(problem), qPrintable(help));
    return ExitUsage;
}

std::optional<int> ParseFileCommand(QCommandLineParser &parser, const QCommandLineOption &help, const QString &command,
                                    const QString &helpText, const QStringList &arguments, QString &file,
                                    const QString &what)
{
    if (!parser.parse(QStringList{command} + arguments))
        return UsageError(command, parser.errorText(), helpText);
    if (parser.isSet(help)) {
        std::fputs(qPrintable(helpText), stdout);
        return ExitFinished;
    }
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty())
        return UsageError(command, QStringLiteral("no %1 given").arg(what), helpText);
    if (files.size() > 1)
        return UsageError(command, QStringLiteral("only one %1, got '%2' too").arg(what, files.at(1)), helpText);
    file = files.first();
    return std::nullopt;
}

} // namespace kvr
