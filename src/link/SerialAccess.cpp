#include "link/SerialAccess.h"
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <grp.h>
#include <unistd.h>

namespace kvr {

namespace {
// The group that serial adapters belong to on Debian and its relatives.
const char *const SerialGroup = "dialout";

bool GroupExists(const QString &name)
{
    return ::getgrnam(name.toLocal8Bit().constData()) != nullptr;
}
}

QString SerialAccessAdvice(const QString &devicePath)
{
    const QByteArray path = QFile::encodeName(devicePath);
    if (path.isEmpty() || ::access(path.constData(), R_OK | W_OK) == 0 || errno != EACCES)
        return {};

    const QFileInfo device(devicePath);
    const QFileDevice::Permissions groupAccess = QFileDevice::ReadGroup | QFileDevice::WriteGroup;
    const bool groupMayUse = (device.permissions() & groupAccess) == groupAccess;
    // The device's own group is the one to join when it grants access (dialout
    // on Debian, uucp elsewhere); otherwise name the usual serial group.
    QString group = groupMayUse ? device.group() : QString::fromLatin1(SerialGroup);
    if (group.isEmpty() || !GroupExists(group))
        group = QString::fromLatin1(SerialGroup);

    const QChar lf(10);
    QString advice = QStringLiteral("Permission denied: this account may not open ") + devicePath
        + QStringLiteral(".") + lf + QStringLiteral("Add your account to the group ") + group
        + QStringLiteral(" (sudo usermod -aG ") + group
        + QStringLiteral(" $USER), then log out and log in again.");
    if (!groupMayUse)
        advice += lf + devicePath + QStringLiteral(" (owner ") + device.owner() + QStringLiteral(", group ")
            + device.group() + QStringLiteral(") gives its group no read and write access: ask the")
            + QStringLiteral(" administrator for a rule that does.");
    return advice;
}

} // namespace kvr
