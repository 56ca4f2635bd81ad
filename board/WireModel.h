#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace kvr::board {

// A board that needs charTimeUs to take each character, behind a receive
// buffer of BufferSize characters as a UART's FIFO: characters arriving
// while it is full are lost, as on real hardware when the PC's pause
// between characters is too short. With a baud rate the wire is modelled
// too: a character cannot arrive sooner than a character time after the one
// before, and the characters of a chunk are taken to have arrived as late
// as the wire allows, so a board process that was not scheduled for a while
// does not turn a well-paced stream into a burst. Without one, the bytes of
// a chunk arrive together.
class CharacterFilter {
public:
    static constexpr int BufferSize = 16;

    CharacterFilter(qint64 charTimeUs, int baud) : m_charTimeUs(charTimeUs), m_wireUs(baud > 0 ? 1e7 / baud : 0) {}
    // The bytes the board takes from a chunk that arrived at nowUs.
    QByteArray Take(const QByteArray &chunk, qint64 nowUs);

private:
    qint64 m_charTimeUs;
    double m_wireUs;              // one character on the wire, 0 for none
    double m_room = BufferSize;   // characters the buffer can still take
    double m_lastUs = 0;          // when the last character arrived
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
