#pragma once
// What the line engine tells about a run as it goes: the files it opens, the
// lines it reads and the lines it hands to the board. The progress display
// and the run record listen; nobody has to poll the engine's state.
#include <QObject>
#include <QString>

namespace kvr {

class CompileEvents : public QObject {
    Q_OBJECT
signals:
    void FileOpened(const QString &path);
    void LineRead(const QString &path, int line);
    // Also for a line a continued run takes as sent by the run it continues.
    void LineSent(const QString &path, int line, const QString &text);
};

} // namespace kvr
