#include "BoardRunner.h"
#include "WireClient.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

#include <csignal>

namespace kvr::test {

BoardRunner::BoardRunner()
{
    m_process.setProgram(Program());
}

BoardRunner::~BoardRunner()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(2000);
    }
}

QString BoardRunner::Program()
{
    return qEnvironmentVariable("KVR_BIN_DIR") + QStringLiteral("/kvr-board");
}

std::unique_ptr<WireClient> BoardRunner::StartConnected(const QString &type, const QStringList &extra)
{
    if (!Start(QStringList{QStringLiteral("--type"), type, QStringLiteral("--port"), QStringLiteral("0"),
                           QStringLiteral("--no-heartbeat")}
               + extra))
        return nullptr;
    auto wire = WireClient::ConnectTcp(Port());
    if (!wire)
        m_failure = QStringLiteral("cannot connect to port %1").arg(Port());
    return wire;
}

bool BoardRunner::Start(const QStringList &args)
{
    m_process.setArguments(args);
    m_process.start();
    if (!m_process.waitForStarted(5000)) {
        m_failure = m_process.errorString();
        return false;
    }
    QDeadlineTimer deadline(10000);
    while (!m_process.canReadLine()) {
        if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning) {
            m_failure = QStringLiteral("no ready line; stderr: ") + QString::fromLocal8Bit(Stderr());
            return false;
        }
        m_process.waitForReadyRead(static_cast<int>(qMax<qint64>(1, deadline.remainingTime())));
    }
    m_readyLine = QString::fromLocal8Bit(m_process.readLine()).trimmed();
    return true;
}

QString BoardRunner::NextLine(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!m_process.canReadLine()) {
        if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning)
            return QString();
        m_process.waitForReadyRead(static_cast<int>(qMax<qint64>(1, deadline.remainingTime())));
    }
    return QString::fromLocal8Bit(m_process.readLine()).trimmed();
}

int BoardRunner::RunToEnd(const QStringList &args, int timeoutMs)
{
    m_process.setArguments(args);
    m_process.start();
    if (!m_process.waitForFinished(timeoutMs))
        return -2;
    Stderr();
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

int BoardRunner::Stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    ::kill(static_cast<pid_t>(m_process.processId()), SIGTERM);
    if (!m_process.waitForFinished(5000))
        return -2;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

quint16 BoardRunner::Port() const
{
    static const QRegularExpression form(QStringLiteral("^listening on 127\\.0\\.0\\.1:(\\d+)$"));
    const auto match = form.match(m_readyLine);
    return match.hasMatch() ? static_cast<quint16>(match.captured(1).toUInt()) : 0;
}

QString BoardRunner::PtyPath() const
{
    return m_readyLine.startsWith(QLatin1String("pty ")) ? m_readyLine.mid(4) : QString();
}

quint16 BoardRunner::HeartbeatPort()
{
    // It reports the port on stderr before its ready line, so it is there
    // or on its way.
    static const QRegularExpression form(QStringLiteral("heartbeat on 127\\.0\\.0\\.1:(\\d+)"));
    QDeadlineTimer deadline(2000);
    for (;;) {
        const auto match = form.match(QString::fromLocal8Bit(Stderr()));
        if (match.hasMatch())
            return static_cast<quint16>(match.captured(1).toUInt());
        if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning)
            return 0;
        m_process.waitForReadyRead(50);
    }
}

QByteArray BoardRunner::Stderr()
{
    m_stderr += m_process.readAllStandardError();
    return m_stderr;
}

}  // namespace kvr::test
