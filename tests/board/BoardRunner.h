#pragma once

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
    quint16 Port() const;
    QString Failure() const { return m_failure; }

private:
    QProcess m_process;
    QString m_readyLine;
    QString m_failure;
};

}  // namespace kvr::test
