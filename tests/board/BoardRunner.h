#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <memory>

namespace kvr::test {

class WireClient;

// Runs the kvr-board program of the build for one test.
class BoardRunner {
public:
    BoardRunner() { m_process.setProgram(Program()); }
    ~BoardRunner();

    static QString Program() { return qEnvironmentVariable("KVR_BIN_DIR") + QStringLiteral("/kvr-board"); }

    // Starts it and waits for its ready line; false (with the reason in
    // Failure()) when it ends or stays silent instead.
    bool Start(const QStringList &args);
    // Starts a board of the type on a free TCP port and connects to it; null
    // (with the reason in Failure()) when either fails.
    std::unique_ptr<WireClient> StartConnected(const QString &type, const QStringList &extra = {});
    // Runs it to its end, for the cases where it must refuse to start.
    int RunToEnd(const QStringList &args, int timeoutMs = 10000);
    // SIGTERM, then its exit code (-1 when it did not end normally).
    int Stop();

    void SetEnvironment(const QProcessEnvironment &env) { m_process.setProcessEnvironment(env); }
    void SetWorkingDirectory(const QString &dir) { m_process.setWorkingDirectory(dir); }
    quint16 Port() const;
    QString PtyPath() const { return m_readyLine.startsWith(QLatin1String("pty ")) ? m_readyLine.mid(4) : QString(); }
    // The heartbeat port it reported on stderr, 0 when none.
    quint16 HeartbeatPort();
    QByteArray Stderr() { return m_stderr += m_process.readAllStandardError(); }
    QString Failure() const { return m_failure; }
    qint64 Pid() const { return m_process.processId(); }

private:
    int ExitCode() const { return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1; }

    QProcess m_process;
    QString m_readyLine;
    QByteArray m_stderr;
    QString m_failure;
};

}  // namespace kvr::test
