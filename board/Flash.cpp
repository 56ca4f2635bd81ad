#include "Flash.h"

#include <QFile>
#include <QFileInfo>

namespace kvr::board {

bool PrepareFlashFile(const QString &path, QString &error)
{
    QFile file(path);
    if (QFileInfo::exists(path) && QFileInfo(path).isDir()) {
        error = QStringLiteral("the flash file %1 is a folder").arg(path);
        return false;
    }
    if (!file.open(QIODevice::ReadWrite)) {
        error = QStringLiteral("cannot open the flash file %1: %2").arg(path, file.errorString());
        return false;
    }
    if (file.size() == 0) {
        if (file.write(QByteArray(FlashSize, '\xFF')) != FlashSize || !file.flush()) {
            error = QStringLiteral("cannot write the flash file %1: %2").arg(path, file.errorString());
            return false;
        }
        return true;
    }
    if (file.size() != FlashSize) {
        error = QStringLiteral("%1 holds %2 bytes, not the %3 of a KVR4410F flash")
                    .arg(path).arg(file.size()).arg(FlashSize);
        return false;
    }
    return true;
}

QString FlashLine()
{
    const auto hex = [](int address) { return QString::number(address, 16).toUpper().rightJustified(4, u'0'); };
    return QStringLiteral("flash ") + hex(FlashBase) + u'-' + hex(FlashBase + FlashSize - 1);
}

}  // namespace kvr::board
