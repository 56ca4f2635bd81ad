#pragma once
// Reads a program file by file for the walks that expand INCLUDE lines on
// the PC without compiling (unravel, the words database): up to 100 nested
// files, each INCLUDE file read at most once per run, every file opened
// along the search paths. The caller sees every line, INCLUDE lines too,
// and says when one is to be followed, so it can finish what it was doing
// with the lines before it.
#include "compiler/CompileState.h"
#include "compiler/SourceFiles.h"
#include <QStringList>
#include <functional>

namespace kvr {

class Prompts;

// How an INCLUDE name gets its extension.
enum class IncludeExtension {
    Default,   // AddDefaultExtension: ".KVR" when the last four characters hold no "."
    WhenNoDot, // ".KVR" when the name holds no "." at all
};

class IncludeReader {
public:
    enum class Event {
        Line,      // a line was read (trailing blanks removed)
        FileEnded, // an INCLUDE file ended; reading goes on in its parent
        Finished,  // the main file ended
        NotFound,  // a file could not be opened (the opener has said so)
    };

    IncludeReader(Prompts &prompts, const QString &searchList,
                  IncludeExtension extension = IncludeExtension::Default);
    ~IncludeReader();
    IncludeReader(const IncludeReader &) = delete;
    IncludeReader &operator=(const IncludeReader &) = delete;

    // Begins a run at `mainFile`, with an empty list of included files.
    void Start(const QString &mainFile);
    Event Next(QString &line);

    // "INCLUDE " in column 1, upper case.
    static bool IsInclude(const QString &line);
    // The file an INCLUDE line names: trimmed, upper-cased, cut before a
    // " \" comment, extension added.
    QString IncludeFileName(const QString &line) const;
    // Follows an INCLUDE line: the named file is read next, unless it was
    // included before in this run or 100 files have been (then nothing
    // happens). True when it will be read.
    bool Include(const QString &line);

    // The file being read (the path it was opened under, once open) and the
    // number of its last line read.
    const QString &CurrentFile() const { return m_stack[0].name; }
    int CurrentLine() const { return m_stack[0].lineNumber; }
    int Depth() const { return m_suspended; }
    const QStringList &IncludedFiles() const { return m_included; }
    void CloseAll();

    // Called with the path of every file as it is opened.
    std::function<void(const QString &path)> onFileOpened;

private:
    Prompts &m_prompts;
    QString m_searchList;
    IncludeExtension m_extension;
    SourceFiles m_files;
    std::array<IncludeEntry, MaxIncludeFiles + 1> m_stack{};
    int m_suspended = 0;
    QStringList m_included;
};

} // namespace kvr
