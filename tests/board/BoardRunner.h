#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <memory>

namespace kvr::test {

class WireClient;

// Runs the kvr-board program of the build for one test.
class BoardRunner {
public:
    BoardRunner();
    ~BoardRunner();

    static QString Program();

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
    QString ReadyLine() const { return m_readyLine; }
    // The next line it prints after the ready line; empty when none comes.
    QString NextLine(int timeoutMs = 5000);
    quint16 Port() const;
    QString PtyPath() const;
    // The heartbeat port it reported on stderr, 0 when none.
    quint16 HeartbeatPort();
    QByteArray Stderr();
    QString Failure() const { return m_failure; }
    qint64 Pid() const { return m_process.processId(); }

private:
    QProcess m_process;
    QString m_readyLine;
    QByteArray m_stderr;
    QString m_failure;
};

}  // namespace kvr::test
