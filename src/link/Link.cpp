#include "link/Link.h"
#include "app/SpinLoop.h"
#include "app/Text.h"
#include "link/WaitGuard.h"
#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace kvr {

qint64 DelayLastPass(double delay)
{
    return static_cast<qint64>(std::trunc(delay * 8.5));
}

double Link::CurrentDelay() const
{
    const Settings &s = m_context.settings;
    const QString &value = s.computerType.left(4) == QLatin1String("6630") ? s.delay6630 : s.delay4410;
    return Val(value);
}

void Link::SendText(const QString &text, bool addCR)
{
    if (!Usable())
        return;
    const QByteArray bytes = text.toLatin1();
    const double delay = CurrentDelay();
    if (delay != 0) {
        const qint64 lastPass = DelayLastPass(delay);
        for (char c : bytes) {
            SpinDelay(lastPass);
            if (!Usable())
                return;
            m_transport->Write(QByteArray(1, c));
        }
        SpinDelay(lastPass);
    } else if (!bytes.isEmpty()) {
        m_transport->Write(bytes);
    }
    if (addCR && Usable())
        m_transport->Write(QByteArray(1, '\r'));
}

void Link::SendRaw(const QByteArray &bytes)
{
    if (Usable() && !bytes.isEmpty())
        m_transport->Write(bytes);
}

int Link::BytesAvailable()
{
    return m_transport ? m_transport->Available() : 0;
}

QByteArray Link::ReadBytes()
{
    return m_transport ? m_transport->TakeAll() : QByteArray();
}

QString Link::BytesToText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes);
}

void Link::ClearInput()
{
    if (m_transport)
        m_transport->DiscardInput();
}

void Link::ServeWhileWaiting(quint32 remainingMs)
{
    const int slice = static_cast<int>(std::min<quint32>(remainingMs, IdleSliceMs));
    if (m_transport && m_transport->IsUsable())
        m_transport->WaitForData(slice);
    else
        m_context.clock.Sleep(slice);
    // Paint and window-close events; the caller's WaitGuard holds back input
    // that could start a second exchange with the board.
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
}

void Link::WaitForReply()
{
    Clock &clock = m_context.clock;
    const double timeout = Val(m_context.settings.timeout);
    const quint32 deadline = clock.TickCount() + static_cast<quint32>(static_cast<qint64>(timeout));
    struct Depth {
        int &depth;
        explicit Depth(int &d) : depth(d) { ++depth; }
        ~Depth() { --depth; }
    } waiting(m_waitDepth);
    const WaitGuard guard;
    // Polls at least once, so a reply already waiting is seen even with a
    // time-out of 0.
    for (;;) {
        if (BytesAvailable() >= 1) {
            const QByteArray bytes = ReadBytes();
            for (char c : bytes)
                if (static_cast<unsigned char>(c) <= 12)
                    return;
        }
        if (m_context.closing)
            return;
        // A link that is down cannot answer: no use sitting out the time-out.
        if (!Usable())
            break;
        const quint32 now = clock.TickCount();
        if (!TickBefore(now, deadline))
            break;
        ServeWhileWaiting(deadline - now);
    }
    NotResponding();
}

void Link::Pause(double seconds)
{
    Clock &clock = m_context.clock;
    const float start = static_cast<float>(clock.SecondsSinceMidnight());
    const float target = static_cast<float>(start + seconds);
    const WaitGuard guard;
    for (;;) {
        const float now = static_cast<float>(clock.SecondsSinceMidnight());
        // The clock going back means midnight passed: the target can never
        // be reached, so the pause ends rather than hanging the program.
        if (now >= target || now < start || m_context.closing)
            return;
        const double leftMs = (static_cast<double>(target) - now) * 1000.0;
        if (leftMs >= 2.0) {
            clock.Sleep(static_cast<int>(std::min(leftMs - 1.0, double(IdleSliceMs))));
            if (QCoreApplication::instance())
                QCoreApplication::processEvents();
        }
    }
}

void Link::BeepUnlessQuiet()
{
    if (m_context.settings.quiet.left(3) == QLatin1String("OFF"))
        m_context.prompts.Beep();
}

QString Link::NotRespondingText(const QString &computerType)
{
    const QChar lf(10);
    return QStringLiteral("KVR") + computerType + QStringLiteral(" NOT RESPONDING.  Please Check:") + lf + lf
           + QStringLiteral("1. power supply") + lf
           + QStringLiteral("2. connections to PC") + lf
           + QStringLiteral("3. COM port selection from ") + QStringLiteral("interactive window options menu.") + lf
           + QStringLiteral("4. Baud rate from interactive window options ")
           + QStringLiteral("menu (KVR4410 & KVR6630 default to 9600 baud)") + lf
           + QStringLiteral("5. Timeout delay from ") + QStringLiteral("interactive window options menu.") + lf + lf
           + QStringLiteral("If characters are missing, especially during ")
           + QStringLiteral("compilation, increase intercharacter ")
           + QStringLiteral("delay from interactive window options menu.");
}

void Link::NotResponding()
{
    m_context.prompts.Message(NotRespondingText(m_context.settings.computerType), PromptIcon::Exclamation);
}

} // namespace kvr
