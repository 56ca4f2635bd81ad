#pragma once
// The eight recent files in section "Recent Files" of the settings file,
// newest first; the file's other sections are kept as they are.
#include <QString>
#include <QStringList>

namespace kvr {

inline constexpr int RecentFileCount = 8;

// RecentFile1 to RecentFile8; an absent entry reads "Not Used".
QStringList ReadRecentFiles(const QString &iniPath);

// Shifts the listed entries down one place (the eighth falls off) and
// writes `name` as RecentFile1. False when the file could not be written.
bool WriteRecentFiles(const QString &iniPath, const QString &name);

// Whether an entry counts as empty.
bool IsUnusedEntry(const QString &entry);

} // namespace kvr
