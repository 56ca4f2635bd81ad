#include "prom/Reflash.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include "compiler/CompileDriver.h"
#include "compiler/SearchPaths.h"
#include "link/Link.h"
#include "link/TerminalHost.h"
#include "link/WaitGuard.h"
#include "prom/SRecord.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <algorithm>
#include <limits>

namespace kvr {

namespace {

constexpr int SavedPosition = 60; // the 61st byte
// A little slower than the wire: the board writes each byte to its flash
// as it comes, and a late one only wastes time where an early one can be
// lost.
constexpr double PaceMargin = 1.08;

// Waits until `clock` reads `due`, sleeping while there is time to spare.
void WaitUntil(const QElapsedTimer &clock, qint64 due)
{
    for (;;) {
        const qint64 left = due - clock.nsecsElapsed();
        if (left <= 0)
            return;
        if (left > 250'000)
            QThread::usleep(static_cast<unsigned long>((left - 150'000) / 1000));
    }
}

ReflashOutcome Ended(ReflashEnd end, const QString &verdict = QString())
{
    ReflashOutcome outcome;
    outcome.end = end;
    outcome.verdict = verdict;
    return outcome;
}

bool IsVerdict(const QString &line)
{
    return line.startsWith(QLatin1String("REFLASH OK")) || line.startsWith(QLatin1String("REFLASH FAILED"))
           || line.startsWith(QLatin1String("REFLASH REFUSED"));
}

} // namespace

ReflashPayload MakeReflashPayload(const QByteArray &image)
{
    ReflashPayload payload;
    payload.lengthLine = QByteArray::number(image.size()) + '\r';
    payload.body = image;
    if (image.size() > SavedPosition) {
        const char saved = image[SavedPosition];
        payload.body[SavedPosition] = '\n';
        payload.body += saved;
    }
    quint32 sum = 0;
    for (const char byte : std::as_const(payload.body))
        sum += static_cast<unsigned char>(byte);
    payload.sumLine = QByteArray::number(sum % 65536) + '\r';
    return payload;
}

qint64 ImageBytePauseNs(double baud)
{
    const double rate = baud > 0 ? baud : 9600;
    return static_cast<qint64>(10.0 / rate * 1e9 * PaceMargin);
}

Reflasher::Reflasher(AppContext &context, Link &link, CompileDriver &driver, TerminalHost *terminal,
                     QObject *parent)
    : QObject(parent), m_context(context), m_link(link), m_driver(driver), m_terminal(terminal)
{
}

void Reflasher::Stop()
{
    m_stopRequested = true;
    if (m_context.busyState == BusyState::Compiling)
        m_driver.HaltCompile();
}

ReflashOutcome Reflasher::Reflash()
{
    const QString current = m_context.settings.currentFile;
    const QString folder = current.left(8) == QLatin1String("Not Used") ? QString() : SplitPath(current).folder;
    const QString path = m_context.prompts.OpenFileName(
        QStringLiteral("PROM programmer file to download to KVR4410F"), QStringLiteral("S-record files (*.mot)"),
        (folder.isEmpty() || folder == QLatin1String(".") ? QString() : ResolvePath(folder) + u'/')
            + QStringLiteral("*.mot"));
    if (path.isEmpty())
        return Ended(ReflashEnd::Cancelled);
    return ReflashFile(path);
}

bool Reflasher::Stream(const ReflashPayload &payload, ReflashOutcome &outcome)
{
    const QByteArray bytes = payload.lengthLine + payload.body + payload.sumLine;
    const qsizetype bodyStart = payload.lengthLine.size();
    const qint64 pause = ImageBytePauseNs(Val(m_context.settings.baudRate));
    QElapsedTimer clock;
    clock.start();
    qint64 last = -pause;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (m_stopRequested || m_context.closing || !m_link.Usable())
            return false;
        WaitUntil(clock, last + pause);
        last = clock.nsecsElapsed();
        m_link.SendRaw(bytes.mid(i, 1));
        const qsizetype sent = i + 1 - bodyStart;
        if (sent > 0 && sent <= payload.body.size() && sent % 16 == 0) {
            emit ProgressStep();
            QCoreApplication::processEvents();
        }
    }
    outcome.streamNs = last;
    return true;
}

QString Reflasher::AwaitVerdict()
{
    Clock &clock = m_context.clock;
    const double ms = std::clamp(Val(m_context.settings.timeout), 0.0, double(std::numeric_limits<qint32>::max()));
    const quint32 deadline = clock.TickCount() + static_cast<quint32>(ms);
    QByteArray pending;
    const WaitGuard guard;
    for (;;) {
        if (m_link.BytesAvailable() >= 1) {
            const QByteArray bytes = m_link.ReadBytes();
            if (m_terminal)
                m_terminal->ShowBytes(bytes);
            pending += bytes;
            qsizetype end;
            while ((end = pending.indexOf('\n')) >= 0) {
                const QString line = QString::fromLatin1(pending.left(end)).trimmed();
                pending.remove(0, end + 1);
                if (IsVerdict(line))
                    return line;
            }
        }
        const quint32 now = clock.TickCount();
        if (!TickBefore(now, deadline) || m_context.closing || !m_link.Usable())
            return QString();
        m_link.ServeWhileWaiting(deadline - now);
    }
}

ReflashOutcome Reflasher::ReflashFile(const QString &path)
{
    m_stopRequested = false;
    ReflashOutcome outcome;
    QString receiver = m_driver.FindProgramFile(QStringLiteral("#REFLASH.KVR"));
    if (receiver.isEmpty()) {
        m_context.prompts.Message(QStringLiteral("Cannot find file #Reflash.kvr"), PromptIcon::Exclamation);
        return Ended(ReflashEnd::ReceiverMissing);
    }
    if (!m_link.Usable()) {
        m_link.NotResponding();
        return Ended(ReflashEnd::NoLink);
    }

    emit StatusText(QStringLiteral("Emptying KVR4410F"));
    m_link.SendText(QStringLiteral("COLD"), true);
    for (int i = 0; i < 20 && !m_context.closing; ++i) {
        QCoreApplication::processEvents();
        m_link.Pause(0.1);
    }
    // The sign-on of the fresh board is no reply to the compile's first line.
    m_link.ClearInput();

    emit StatusText(QStringLiteral("Compiling #Reflash.kvr"));
    m_driver.CompileFile(receiver);
    emit BringForward();
    if (m_stopRequested)
        return Ended(ReflashEnd::Halted);
    // Without its receiver the board would take the image for commands.
    if (m_driver.State().runEnd != RunEnd::Finished)
        return Ended(ReflashEnd::CompileFailed);

    const SRecordImage image = ReadSRecordImage(path);
    if (!image.error.isEmpty()) {
        m_context.prompts.Message(image.error, PromptIcon::Exclamation);
        return Ended(ReflashEnd::BadFile, image.error);
    }
    const ReflashPayload payload = MakeReflashPayload(image.image);
    outcome.imageBytes = image.image.size();

    emit StatusText(QStringLiteral("Sending %1 bytes").arg(image.image.size()));
    if (m_terminal)
        m_terminal->SetInputTimerEnabled(false);
    m_link.SendText(QStringLiteral("REFLASH"), true);
    m_link.Pause(0.1);
    m_link.ClearInput();
    const bool sent = Stream(payload, outcome);

    for (int i = 0; i < 10 && !m_context.closing; ++i) {
        QCoreApplication::processEvents();
        m_link.Pause(0.1);
    }
    outcome.verdict = AwaitVerdict();
    if (m_terminal)
        m_terminal->SetInputTimerEnabled(true);
    m_link.BeepUnlessQuiet();
    m_link.Pause(0.3);
    m_link.BeepUnlessQuiet();

    outcome.verified = outcome.verdict.startsWith(QLatin1String("REFLASH OK"));
    if (!sent && m_stopRequested)
        outcome.end = ReflashEnd::Halted;
    else if (outcome.verdict.isEmpty())
        outcome.end = ReflashEnd::NoVerdict;
    emit VerdictShown(outcome.verdict.isEmpty() ? QStringLiteral("The board gave no verdict") : outcome.verdict);
    emit StatusText(QString());
    return outcome;
}

} // namespace kvr
