#include "WireModel.h"

#include <algorithm>

namespace kvr::board {

QByteArray CharacterFilter::Take(const QByteArray &chunk, qint64 nowUs)
{
    if (m_charTimeUs <= 0)
        return chunk;
    QByteArray taken;
    const qsizetype count = chunk.size();
    for (qsizetype i = 0; i < count; ++i) {
        double arrived = double(nowUs) - double(count - 1 - i) * m_wireUs;
        if (m_started)
            arrived = std::max(arrived, m_lastUs + m_wireUs);
        // The board has emptied one place of the buffer per character time.
        if (m_started)
            m_room = std::min<double>(BufferSize, m_room + (arrived - m_lastUs) / double(m_charTimeUs));
        m_started = true;
        m_lastUs = arrived;
        if (m_room >= 1) {
            m_room -= 1;
            taken += chunk[i];
        }
    }
    return taken;
}

OutputPacer::OutputPacer(int baud, QObject *parent) : QObject(parent), m_baud(baud)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &OutputPacer::Drain);
}

void OutputPacer::Push(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    if (m_baud <= 0) {
        emit Ready(bytes);
        return;
    }
    // A line that has been idle for a character time starts a new pace.
    if (m_queue.isEmpty() && (!m_clock.isValid() || DueCount() > m_sent)) {
        m_clock.start();
        m_sent = 0;
    }
    m_queue += bytes;
    Drain();
}

void OutputPacer::Clear()
{
    m_queue.clear();
    m_timer.stop();
}

qint64 OutputPacer::DueCount() const
{
    // The first character goes at once; each further one after 10 bit times.
    return 1 + m_clock.nsecsElapsed() / 1000 * m_baud / 10 / 1000000;
}

void OutputPacer::Drain()
{
    const qint64 count = qMin<qint64>(DueCount() - m_sent, m_queue.size());
    if (count > 0) {
        const QByteArray out = m_queue.left(count);
        m_queue.remove(0, count);
        m_sent += count;
        emit Ready(out);
    }
    if (m_queue.isEmpty()) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_timer.start();
    }
}

}  // namespace kvr::board
