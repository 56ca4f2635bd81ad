#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace kvr::board {

// A board that needs charTimeUs to take each character, behind a receive
// buffer of BufferSize characters as a UART's FIFO: characters arriving
// while it is full are lost, as on real hardware when the PC's pause
// between characters is too short. Bytes of one chunk arrive together; the
// buffer absorbs the bunching that scheduling puts into a well-paced stream,
// not a PC that sends faster than the board takes.
class CharacterFilter {
public:
    static constexpr int BufferSize = 16;

    explicit CharacterFilter(qint64 charTimeUs) : m_charTimeUs(charTimeUs) {}
    // The bytes the board takes from a chunk that arrived at nowUs.
    QByteArray Take(const QByteArray &chunk, qint64 nowUs);

private:
    qint64 m_charTimeUs;
    double m_room = BufferSize;   // characters the buffer can still take
    qint64 m_lastUs = 0;
    bool m_started = false;
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
