#include "PtyFront.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace kvr::board {

PtyFront::PtyFront(const QString &linkPath, QObject *parent) : BoardFront(parent), m_linkPath(linkPath)
{
}

PtyFront::~PtyFront()
{
    if (m_linkMade)
        QFile::remove(m_linkPath);
    if (m_master >= 0)
        ::close(m_master);
    if (m_slave >= 0)
        ::close(m_slave);
}

bool PtyFront::Open(QString &error)
{
    char name[256] = {};
    if (::openpty(&m_master, &m_slave, name, nullptr, nullptr) != 0) {
        error = QStringLiteral("cannot create a pseudo-terminal: ") + QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    m_slaveName = QString::fromLocal8Bit(name);
    // A serial line passes bytes as they are: no echo, no line editing.
    termios settings {};
    ::tcgetattr(m_slave, &settings);
    ::cfmakeraw(&settings);
    ::cfsetispeed(&settings, B9600);
    ::cfsetospeed(&settings, B9600);
    ::tcsetattr(m_slave, TCSANOW, &settings);
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);
    ::fcntl(m_master, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_slave, F_SETFD, FD_CLOEXEC);

    if (!m_linkPath.isEmpty()) {
        const QFileInfo existing(m_linkPath);
        if (existing.isSymLink()) {
            QFile::remove(m_linkPath);
        } else if (existing.exists()) {
            error = QStringLiteral("%1 exists and is not a symbolic link; not replacing it").arg(m_linkPath);
            return false;
        }
        if (!QFile::link(m_slaveName, m_linkPath)) {
            error = QStringLiteral("cannot make the link %1").arg(m_linkPath);
            return false;
        }
        m_linkMade = true;
    }
    m_notifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &PtyFront::OnReadable);
    return true;
}

QString PtyFront::ReadyLine() const
{
    return QStringLiteral("pty ") + m_slaveName;
}

void PtyFront::Ready()
{
    // The sign-on at power-up went out before any PC could have the line open.
    ::tcflush(m_slave, TCIFLUSH);
}

void PtyFront::OnReadable()
{
    char buffer[4096];
    const ssize_t count = ::read(m_master, buffer, sizeof buffer);
    if (count > 0)
        emit Received(QByteArray(buffer, static_cast<int>(count)));
}

void PtyFront::Send(const QByteArray &bytes)
{
    // With nobody reading, the line's buffer fills; what does not fit is
    // lost, as it would be on a wire.
    const char *data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(m_master, data, static_cast<size_t>(left));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        data += written;
        left -= written;
    }
}

}  // namespace kvr::board
