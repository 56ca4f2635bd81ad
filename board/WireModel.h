#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace kvr::board {

// A board that needs time to take each character: one arriving less than
// charTimeUs after the last one taken is lost, as on real hardware when the
// PC's intercharacter delay is too short. Bytes of one chunk arrive together.
class CharacterFilter {
public:
    explicit CharacterFilter(qint64 charTimeUs) : m_charTimeUs(charTimeUs) {}
    // The bytes the board takes from a chunk that arrived at nowUs.
    QByteArray Take(const QByteArray &chunk, qint64 nowUs);

private:
    qint64 m_charTimeUs;
    qint64 m_lastTakenUs = 0;
    bool m_anyTaken = false;
};

// Sends what the board writes at the pace of a serial line: 10 bits per
// character at the given baud rate; 0 passes everything at once.
class OutputPacer : public QObject {
    Q_OBJECT
public:
    explicit OutputPacer(int baud, QObject *parent = nullptr);
    void Push(const QByteArray &bytes);
    void Clear();

signals:
    void Ready(const QByteArray &bytes);

private:
    void Drain();
    qint64 DueCount() const;

    int m_baud;
    QByteArray m_queue;
    QElapsedTimer m_clock;   // runs while the queue is being drained
    qint64 m_sent = 0;       // characters sent since the clock started
    QTimer m_timer;
};

}  // namespace kvr::board
