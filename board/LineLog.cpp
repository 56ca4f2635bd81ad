#include "LineLog.h"

namespace kvr::board {

bool LineLog::Open(const QString &path, QString &error)
{
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        error = QStringLiteral("cannot write the log %1: %2").arg(path, m_file.errorString());
        return false;
    }
    return true;
}

void LineLog::Take(const QByteArray &bytes)
{
    if (!m_file.isOpen())
        return;
    // As the board reads lines: CR ends one, and so does a LF not after a CR.
    for (char byte : bytes) {
        const bool lineEnd = byte == '\r' || (byte == '\n' && !m_afterCr);
        m_afterCr = byte == '\r';
        if (lineEnd) {
            m_line += '\n';
            m_file.write(m_line);
            m_line.clear();
        } else if (byte != '\n') {
            m_line += byte;
        }
    }
}

}  // namespace kvr::board
