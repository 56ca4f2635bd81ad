#include "BoardRunner.h"
#include "WireClient.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

namespace kvr::test {

BoardRunner::~BoardRunner()
{
    // SIGTERM lets the board remove its temporary folders; a kill would leave one behind.
    m_process.terminate();
    if (!m_process.waitForFinished(5000)) {
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
    for (QDeadlineTimer deadline(10000); !m_process.canReadLine();) {
        if (deadline.hasExpired() || (!m_process.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime())))
                                      && m_process.state() == QProcess::NotRunning)) {
            m_failure = QStringLiteral("no ready line: %1; stderr: %2")
                            .arg(m_process.errorString(), QString::fromLocal8Bit(m_process.readAllStandardError()));
            return false;
        }
    }
    m_readyLine = QString::fromLocal8Bit(m_process.readLine()).trimmed();
    return true;
}

quint16 BoardRunner::Port() const
{
    static const QRegularExpression form(QStringLiteral("^listening on 127\\.0\\.0\\.1:(\\d+)$"));
    return quint16(form.match(m_readyLine).captured(1).toUInt());
}

}  // namespace kvr::test
