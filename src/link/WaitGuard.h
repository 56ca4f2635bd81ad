#pragma once
// While the program waits for the board, the window keeps painting and can
// be closed, but no key or click may start a second exchange: keys typed
// meanwhile are held and delivered when the wait is over (F2 excepted, which
// halts at once), clicks are dropped.
#include <QList>
#include <QObject>
#include <QPointer>
#include <memory>

class QEvent;

namespace kvr {

class WaitGuard : public QObject {
public:
    // Installed on the application for the guard's lifetime; nested guards
    // leave the work to the outermost one.
    WaitGuard();
    ~WaitGuard() override;
    // Some wait for the board is in progress.
    static bool Active();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Held {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };
    QList<std::shared_ptr<Held>> m_held;
    bool m_outermost = false;
};

} // namespace kvr
