#pragma once
// The single-instance lock: a one-line file in the settings folder.
#include "app/Prompts.h"

namespace kvr {

inline const QString LockFileLine = QStringLiteral("KVR-PC for Windows lock file: can be deleted.");

// Asks the lock question when the file exists. False: the user confirmed
// that another copy runs, and the program must end without touching the
// file. True: the lock file has been (re)created and start-up goes on.
bool AcquireLock(const QString &lockPath, Prompts &prompts);

// Deletes the lock file; errors are ignored.
void ReleaseLock(const QString &lockPath);

} // namespace kvr
