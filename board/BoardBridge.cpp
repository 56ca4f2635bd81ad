#include "BoardBridge.h"

namespace kvr::board {

BoardBridge::BoardBridge(BoardFront &front, ForthProcess &forth, int baud, int charTimeUs, LineLog *log,
                         QObject *parent)
    : QObject(parent), m_front(front), m_forth(forth), m_log(log), m_filter(charTimeUs, baud), m_pacer(baud)
{
    m_clock.start();
    connect(&m_front, &BoardFront::Received, this, &BoardBridge::FromPc);
    connect(&m_forth, &ForthProcess::Output, this, &BoardBridge::FromForth);
    connect(&m_forth, &ForthProcess::Restarted, this, [this] {
        m_forthReading = true;
        m_lineSent = false;
        m_programKeys = false;
    });
    connect(&m_forth, &ForthProcess::ReadingLine, this, [this](bool reading) {
        m_forthReading = reading;
        if (reading) {
            m_lineSent = false;
            m_programKeys = false;
        }
    });
    connect(&m_forth, &ForthProcess::ProgramTakesKeys, this, [this] { m_programKeys = true; });
    connect(&m_pacer, &OutputPacer::Ready, &m_front, &BoardFront::Send);
    connect(&m_front, &BoardFront::ClientConnected, &m_pacer, &OutputPacer::Clear);
}

void BoardBridge::FromPc(const QByteArray &chunk)
{
    const QByteArray taken = m_filter.Take(chunk, m_clock.nsecsElapsed() / 1000);
    if (taken.isEmpty())
        return;
    if (m_log != nullptr)
        m_log->Take(taken);
    // Ctrl-C breaks into a running program; the board's own loop also sees
    // it and drops the line being typed. A program that reads keys itself
    // (a receiver of binary data) gets it as data.
    for (char byte : m_programKeys ? QByteArray() : taken) {
        if (byte == '\r' || byte == '\n')
            m_lineSent = true;
        else if (byte == '\x03' && (!m_forthReading || m_lineSent))
            m_forth.Interrupt();
    }
    m_forth.Write(taken);
}

void BoardBridge::FromForth(const QByteArray &bytes)
{
    m_pacer.Push(bytes);
}

}  // namespace kvr::board
