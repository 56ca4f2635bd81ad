#pragma once
// Progress of the running compile for a title bar or a terminal line: the
// file and line at hand, the lines done against the lines of the files
// opened so far, and the time since the run started. Counting is separate
// from showing: listeners get ready text at most every IntervalMs.
#include <QObject>
#include <QString>

namespace kvr {

class Clock;
class CompileDriver;

class CompileProgress : public QObject {
    Q_OBJECT
public:
    struct Snapshot {
        QString file;
        int line = 0;
        qint64 done = 0;  // source lines read, all files
        qint64 known = 0; // lines of the files opened so far
        quint32 elapsedMs = 0;
    };

    static constexpr quint32 IntervalMs = 200;

    CompileProgress(CompileDriver &driver, Clock &clock, QObject *parent = nullptr);

    const Snapshot &Current() const { return m_now; }

signals:
    // The progress as text; empty once the run has ended.
    void Updated(const QString &text);

private:
    void Start();
    void FileOpened(const QString &path);
    void LineRead(const QString &path, int line);
    void Publish(quint32 now);

    Clock &m_clock;
    Snapshot m_now;
    quint32 m_started = 0;
    quint32 m_nextUpdate = 0;
};

// "MAIN.KVR line 12 - 240 of 1000 lines - 0:04"
QString FormatProgress(const CompileProgress::Snapshot &now);

// Lines of a source file as the compiler reads them (CR LF, LF or CR ends).
qint64 CountSourceLines(const QString &logicalPath);

} // namespace kvr
