#include "compiler/CompileProgress.h"
#include "app/Clock.h"
#include "app/FilePaths.h"
#include "compiler/CompileDriver.h"
#include <QFile>
#include <QFileInfo>

namespace kvr {

CompileProgress::CompileProgress(CompileDriver &driver, Clock &clock, QObject *parent)
    : QObject(parent), m_clock(clock)
{
    CompileEvents &events = driver.Engine().Events();
    connect(&driver, &CompileDriver::RunStarted, this, &CompileProgress::Start);
    connect(&events, &CompileEvents::FileOpened, this, &CompileProgress::FileOpened);
    connect(&events, &CompileEvents::LineRead, this, &CompileProgress::LineRead);
    connect(&driver, &CompileDriver::RunEnded, this, [this] {
        m_now.elapsedMs = m_clock.TickCount() - m_started;
        emit Updated(QString());
    });
}

void CompileProgress::Start()
{
    m_now = Snapshot{};
    m_started = m_clock.TickCount();
    m_nextUpdate = m_started;
}

void CompileProgress::FileOpened(const QString &path)
{
    m_now.known += CountSourceLines(path);
}

void CompileProgress::LineRead(const QString &path, int line)
{
    m_now.file = path;
    m_now.line = line;
    ++m_now.done;
    const quint32 now = m_clock.TickCount();
    if (!TickBefore(now, m_nextUpdate))
        Publish(now);
}

void CompileProgress::Publish(quint32 now)
{
    m_now.elapsedMs = now - m_started;
    m_nextUpdate = now + IntervalMs;
    emit Updated(FormatProgress(m_now));
}

QString FormatProgress(const CompileProgress::Snapshot &now)
{
    const quint32 seconds = now.elapsedMs / 1000;
    const QString minutes = seconds >= 3600
                                ? QStringLiteral("%1:%2").arg(seconds / 3600).arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
                                : QString::number(seconds / 60);
    return QStringLiteral("%1 line %2 - %3 of %4 lines - %5:%6")
        .arg(QFileInfo(now.file).fileName())
        .arg(now.line)
        .arg(now.done)
        .arg(now.known)
        .arg(minutes)
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

qint64 CountSourceLines(const QString &logicalPath)
{
    QFile file(ResolvePath(logicalPath));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray bytes = file.readAll();
    qint64 lines = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\n' || (bytes[i] == '\r' && (i + 1 == bytes.size() || bytes[i + 1] != '\n')))
            ++lines;
    }
    if (!bytes.isEmpty() && bytes.back() != '\n' && bytes.back() != '\r')
        ++lines;
    return lines;
}

} // namespace kvr
