#pragma once
// Logical (upper-cased) path names resolved to files on a case-sensitive
// disk: each component is matched without regard to case, an exact match
// winning.
#include <QString>

namespace kvr {

// The logical name of a file: absolute, clean and upper-cased. The one
// form in which names are compared (window captions, the compiler's file
// names, the recent list).
QString LogicalName(const QString &name);

// The on-disk spelling of `logicalPath`. Components that match nothing are
// kept as given, so the result can name a file still to be created.
QString ResolvePath(const QString &logicalPath);

// Whether a file (not a folder) exists under the logical name.
bool FileExistsCI(const QString &logicalPath);

// Whether a folder exists under the logical name.
bool DirExistsCI(const QString &logicalPath);

// "\" is accepted as a separator in names typed or read from source.
QString NormalizeSeparators(const QString &path);

// A folder name with exactly one trailing separator.
QString WithTrailingSeparator(const QString &folder);

} // namespace kvr
