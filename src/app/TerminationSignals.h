#pragma once
// SIGTERM and SIGHUP (a shutdown, the terminal or session going away) turned
// into a Qt signal, so the program can end as Exit would instead of being
// cut off with its lock file and unsaved text left behind.
#include <QObject>

class QSocketNotifier;

namespace kvr {

class TerminationSignals : public QObject {
    Q_OBJECT
public:
    // One per process; the handlers stay installed until it is destroyed.
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

signals:
    void Received(int signalNumber);

private:
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace kvr
