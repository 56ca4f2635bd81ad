#pragma once
// Where source files are sought: the top-level file's folder, the folders
// the user added, then the built-in ones. A path list is folder entries
// each ending in ";", each folder with its trailing separator.
#include <QString>

namespace kvr {

class AppContext;
class Paths;
class Prompts;
class SourceFiles;

struct SplitResult {
    QString folder; // "." when the path names no folder
    QString name;
};

// Splits at the last "/" or "\"; one only at the very start counts as none.
SplitResult SplitPath(const QString &path);

// Program folder, its KVR4410 and KVR6630 sub-folders, the KVR home folder.
QString DefaultSearchPaths(const Paths &paths);

// The list of one lookup: top-level folder, extra paths, built-in paths.
QString SearchList(const QString &topLevelFolder, const QString &extraSearchPaths,
                   const QString &defaultSearchPaths);

// Opens `name` under a fresh number (handed out through `fileNumber` at
// once): first exactly as given when it names a folder, then along the
// list. On success `name` holds the path opened. Text after the last ";"
// is never tried. Failure shows "Can't open file " + name.
bool FindSourceFile(QString &name, int &fileNumber, SourceFiles &files,
                    const QString &searchList, Prompts &prompts);

// The extra paths after the add dialog's answer; an empty answer changes
// nothing.
QString AddSearchPath(const QString &extraSearchPaths, const QString &answer);

QString AddPathsPrompt();
QString PathsDisplayText(const QString &extraSearchPaths, const QString &defaultSearchPaths);

// mnuOPAdd and mnuOPDefault: ask or reset, show the list, write the settings.
void AddOrDisplayPaths(AppContext &context);
void SetDefaultPaths(AppContext &context);

} // namespace kvr
