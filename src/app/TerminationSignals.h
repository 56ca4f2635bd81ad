#pragma once
// Signals that end the program (SIGTERM at a shutdown, SIGHUP when the
// terminal or session goes away, Ctrl-C's SIGINT where wanted) turned into a
// Qt signal on the main thread, so the program can end as Exit would instead
// of being cut off with its lock file and unsaved text left behind.
#include <QList>
#include <QObject>
#include <csignal>

class QSocketNotifier;

namespace kvr {

class TerminationSignals : public QObject {
    Q_OBJECT
public:
    // One per process; the handlers stay installed until it is destroyed.
    explicit TerminationSignals(QList<int> handled = {SIGTERM, SIGHUP}, QObject *parent = nullptr);
    ~TerminationSignals() override;

signals:
    void Received(int signalNumber);

private:
    QSocketNotifier *m_notifier = nullptr;
    QList<int> m_handled;
};

} // namespace kvr
