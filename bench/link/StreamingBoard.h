#pragma once
// A stand-in board on its own thread for the benchmarks: either streams a
// block of text as fast as TCP takes it once the PC sends a first byte, or
// answers each line with " ok".
#include <QByteArray>
#include <QThread>
#include <atomic>

namespace kvr::bench {

class StreamingBoard : public QThread {
public:
    enum class Mode { Stream, Answer };
    StreamingBoard(Mode mode, QByteArray payload = {}) : m_mode(mode), m_payload(std::move(payload)) {}
    // Listens on a free loopback port; returns it.
    quint16 Listen();

protected:
    void run() override;

private:
    Mode m_mode;
    QByteArray m_payload;
    int m_listenFd = -1;
};

} // namespace kvr::bench
