#include "BoardRunner.h"
#include "WireClient.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

#include <csignal>

namespace kvr::test {

BoardRunner::~BoardRunner()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(2000);
    }
}

std::unique_ptr<WireClient> BoardRunner::StartConnected(const QString &type, const QStringList &extra)
{
    if (!Start(QStringList{QStringLiteral("--type"), type, QStringLiteral("--port"), QStringLiteral("0"),
                           QStringLiteral("--no-heartbeat")} + extra))
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
    QDeadlineTimer deadline(10000);
    while (!m_process.canReadLine()) {
        if (deadline.hasExpired() || !m_process.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime())))
                && m_process.state() == QProcess::NotRunning) {
            m_failure = QStringLiteral("no ready line: %1; stderr: %2")
                            .arg(m_process.errorString(), QString::fromLocal8Bit(Stderr()));
            return false;
        }
    }
    m_readyLine = QString::fromLocal8Bit(m_process.readLine()).trimmed();
    return true;
}

int BoardRunner::RunToEnd(const QStringList &args, int timeoutMs)
{
    m_process.setArguments(args);
    m_process.start();
    if (!m_process.waitForFinished(timeoutMs))
        return -2;
    Stderr();
    return ExitCode();
}

int BoardRunner::Stop()
{
    if (m_process.state() != QProcess::NotRunning) {
        ::kill(static_cast<pid_t>(m_process.processId()), SIGTERM);
        if (!m_process.waitForFinished(5000))
            return -2;
    }
    return ExitCode();
}

quint16 BoardRunner::Port() const
{
    static const QRegularExpression form(QStringLiteral("^listening on 127\\.0\\.0\\.1:(\\d+)$"));
    return quint16(form.match(m_readyLine).captured(1).toUInt());
}

quint16 BoardRunner::HeartbeatPort()
{
    // It reports the port on stderr before its ready line, so it is there
    // or on its way.
    static const QRegularExpression form(QStringLiteral("heartbeat on 127\\.0\\.0\\.1:(\\d+)"));
    QDeadlineTimer deadline(2000);
    QRegularExpressionMatch match;
    while (!(match = form.match(QString::fromLocal8Bit(Stderr()))).hasMatch() && !deadline.hasExpired()
           && m_process.state() != QProcess::NotRunning)
        m_process.waitForReadyRead(50);
    return quint16(match.captured(1).toUInt());
}

}  // namespace kvr::test
