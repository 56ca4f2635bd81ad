#include "app/LockFile.h"
#include <QFile>

namespace kvr {

bool AcquireLock(const QString &lockPath, Prompts &prompts)
{
    if (QFile::exists(lockPath)) {
        const PromptAnswer answer = prompts.Message(
            QStringLiteral("It appears that KVR-PC for Windows is already running.\n\n"
                           "Click Cancel if you are sure that it is not."),
            PromptIcon::Exclamation, PromptButtons::OkCancel);
        if (answer == PromptAnswer::Ok)
            return false;
        QFile::remove(lockPath);
    }
    QFile file(lockPath);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(LockFileLine.toLatin1() + "\r\n");
    return true;
}

void ReleaseLock(const QString &lockPath)
{
    QFile::remove(lockPath);
}

} // namespace kvr
