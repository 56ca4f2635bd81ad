#include "prom/UploadCollector.h"
#include "app/AppContext.h"
#include "app/Text.h"
#include "link/Link.h"
#include "link/WaitGuard.h"
#include <QCoreApplication>
#include <QIODevice>
#include <algorithm>
#include <limits>

namespace kvr {

namespace {
const QChar CtrlZ(26);
}

CollectResult UploadCollector::Collect(QIODevice &file, int start)
{
    m_stopRequested = false;
    CollectResult result;
    Clock &clock = m_context.clock;
    const auto timeout = static_cast<quint32>(
        std::clamp(Val(m_context.settings.timeout), 0.0, double(std::numeric_limits<qint32>::max())));
    QElapsedTimer elapsed;
    elapsed.start();
    int address = start;
    emit AddressShown(address);
    QString buffer;
    quint32 deadline = clock.TickCount() + timeout;
    const WaitGuard guard;
    for (;;) {
        if (m_stopRequested || m_context.closing) {
            result.stopped = true;
            break;
        }
        if (m_link.BytesAvailable() >= 1) {
            const QByteArray bytes = m_link.ReadBytes();
            result.received += bytes.size();
            result.elapsedNs = elapsed.nsecsElapsed();
            buffer += QString::fromLatin1(bytes);
        }
        const qsizetype echo = buffer.indexOf(QLatin1String("RECORD"));
        if (echo >= 0)
            buffer.remove(0, echo + 6);
        const qsizetype lineFeed = buffer.indexOf(u'\n');
        if (lineFeed >= 0) {
            file.write(LTrim(buffer.left(lineFeed + 1)).toLatin1());
            buffer.remove(0, lineFeed + 1);
            ++result.lines;
            deadline = clock.TickCount() + timeout;
            if (!buffer.startsWith(CtrlZ)) {
                address += 16;
                emit AddressShown(address);
                QCoreApplication::processEvents();
                continue;
            }
            emit ProgressText(QStringLiteral("Please wait ..."));
            file.write("\r\n");
        }
        if (buffer.startsWith(CtrlZ)) {
            result.endSeen = true;
            break;
        }
        const quint32 now = clock.TickCount();
        if (!TickBefore(now, deadline))
            break;
        // A link that is down sends nothing more: the time-out still runs,
        // as it does for a silent board.
        m_link.ServeWhileWaiting(deadline - now);
    }
    return result;
}

} // namespace kvr
