#pragma once

#include <QByteArray>
#include <QFile>

namespace kvr::board {

// Records every line the board received, as received (without its carriage
// return), one line per text line, written out as soon as it is complete.
class LineLog {
public:
    bool Open(const QString &path, QString &error);
    void Take(const QByteArray &bytes);

private:
    QFile m_file;
    QByteArray m_line;
    bool m_afterCr = false;
};

}  // namespace kvr::board
