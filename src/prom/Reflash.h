#pragma once
// Re-programming the flash of a KVR4410F: empty the board, compile the
// receiver #REFLASH.KVR on it, read the whole S-record file, then stream
// the image to REFLASH and take the board's one-line verdict.
//
// What follows "REFLASH" (our receiver's protocol): the image length as a
// decimal line; the image with its 61st byte replaced by a line feed; for
// an image longer than 60 bytes the true 61st byte; the sum of every byte
// after the length line, modulo 65536, as a decimal line. The receiver puts
// the 61st byte in place only when the sums agree and answers with a line
// beginning "REFLASH OK", "REFLASH FAILED" or "REFLASH REFUSED".
#include <QByteArray>
#include <QObject>
#include <QString>

namespace kvr {

class AppContext;
class CompileDriver;
class Link;
class TerminalHost;

struct ReflashPayload {
    QByteArray lengthLine; // "512\r"
    QByteArray body;       // the image as sent, then the saved 61st byte
    QByteArray sumLine;    // "47113\r"
};

ReflashPayload MakeReflashPayload(const QByteArray &image);

// Nanoseconds from one image byte to the next at `baud`: ten bits on the
// wire and a margin for the jitter of the link on its way.
qint64 ImageBytePauseNs(double baud);

enum class ReflashEnd {
    Verdict,         // the board answered; see `verified`
    Cancelled,       // no file chosen
    ReceiverMissing, // #REFLASH.KVR not found: nothing was sent
    NoLink,
    CompileFailed,   // the receiver did not compile: no image was sent
    BadFile,         // the S-record file was refused: no image was sent
    NoVerdict,       // the board said nothing within the time-out
    Halted,
};

struct ReflashOutcome {
    ReflashEnd end = ReflashEnd::Verdict;
    bool verified = false;  // the board's verdict was "REFLASH OK"
    QString verdict;        // the board's line, or the refusal's message
    qint64 imageBytes = 0;
    qint64 streamNs = 0;    // from the first image byte to the last
};

class Reflasher : public QObject {
    Q_OBJECT
public:
    Reflasher(AppContext &context, Link &link, CompileDriver &driver, TerminalHost *terminal,
              QObject *parent = nullptr);

    // Asks for the file first.
    ReflashOutcome Reflash();
    ReflashOutcome ReflashFile(const QString &path);
    // Ctrl-C or closing: halts the compile or stops sending.
    void Stop();

signals:
    void StatusText(const QString &text);
    // One more block on the progress label: 16 more bytes sent.
    void ProgressStep();
    void VerdictShown(const QString &verdict);
    void BringForward();

private:
    // Sends every byte at the image pace; false when stopped on the way.
    bool Stream(const ReflashPayload &payload, ReflashOutcome &outcome);
    QString AwaitVerdict();

    AppContext &m_context;
    Link &m_link;
    CompileDriver &m_driver;
    TerminalHost *m_terminal;
    bool m_stopRequested = false;
};

} // namespace kvr
