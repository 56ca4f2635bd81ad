#pragma once
// Turns Ctrl-C (SIGINT) into a Qt signal on the main thread, so that a
// compile in progress can be halted as F2 halts it in the windows.
#include <QObject>

class QSocketNotifier;

namespace kvr {

class InterruptWatcher : public QObject {
    Q_OBJECT
public:
    explicit InterruptWatcher(QObject *parent = nullptr);
    ~InterruptWatcher() override;

signals:
    void Interrupted();

private:
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace kvr
