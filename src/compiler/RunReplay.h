#pragma once
// A continued run reads the program from its start, as a full compile would,
// so include files, conditional state and the compiled-files list come out
// as they were. Up to the line it restarts at it sends nothing: each line it
// would send is compared with what the record says the board already has.
#include "compiler/RunRecord.h"

namespace kvr {

class RunReplay {
public:
    explicit RunReplay(const RunRecord &record) : m_lines(record.lines), m_restart(record.RestartIndex()) {}

    // Lines are still compared rather than sent.
    bool Replaying() const { return m_next < m_restart && !m_changed; }
    // The next line the run would send; false, with the place kept, when
    // the board got something else.
    bool Match(const QString &file, int line, const QString &text);
    // The run ended before it reached the restart line.
    void StoppedAt(const QString &file, int line);
    // True once: the first line after the compared ones is due.
    bool TakeResume();

    bool Changed() const { return m_changed; }
    bool Resumed() const { return m_resumed; }
    QString ChangedFile() const { return m_file; }
    int ChangedLine() const { return m_line; }

private:
    const QList<SentLine> &m_lines;
    qsizetype m_restart;
    qsizetype m_next = 0;
    bool m_changed = false;
    bool m_resumed = false;
    QString m_file;
    int m_line = 0;
};

} // namespace kvr
