#pragma once

#include "BoardFront.h"

#include <QSocketNotifier>

namespace kvr::board {

// The board on a serial line: a pseudo-terminal whose other end the PC opens
// as its serial port. We keep that end open ourselves too, so a PC closing it
// is not a hang-up for us.
class PtyFront : public BoardFront {
    Q_OBJECT
public:
    explicit PtyFront(const QString &linkPath, QObject *parent = nullptr);
    ~PtyFront() override;
    bool Open(QString &error) override;
    QString ReadyLine() const override;
    void Send(const QByteArray &bytes) override;
    void Ready() override;

private:
    void OnReadable();

    QString m_linkPath;
    bool m_linkMade = false;
    int m_master = -1;
    int m_slave = -1;
    QString m_slaveName;
    QSocketNotifier *m_notifier = nullptr;
};

}  // namespace kvr::board
