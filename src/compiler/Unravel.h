#pragma once
// Unravel INCLUDEs: a source file with every INCLUDE file written in its
// place, once, into one flat file; optionally without comments and extra
// blanks. Also a line map from each output line back to its source.
#include "app/SafeSave.h"
#include <QList>
#include <QString>
#include <functional>

namespace kvr {

class AppContext;
class Prompts;

// Where one output line came from.
struct SourcePlace {
    QString file; // the path the file was opened under
    int line = 0;
};

struct UnravelResult {
    enum class End { Finished, OpenFailed, NotFound, WriteFailed };
    End end = End::Finished;
    SaveResult error;      // OpenFailed, WriteFailed
    QString missingFile;   // NotFound
    QList<SourcePlace> map; // one entry per line written
    int filesRead = 0;
};

// A line as the strip option writes it: false when it is dropped (empty,
// or a "\" comment line); otherwise compacted.
bool StripLine(QString &line);

// Reads `source` and its INCLUDE files along `searchList` from the source's
// folder (made the current folder) and writes them to `outputPath` with CR
// LF line ends. A missing file stops the run: what was written is kept.
UnravelResult UnravelFile(const QString &source, const QString &outputPath, bool strip,
                          const QString &searchList, Prompts &prompts);

// The line map as text: one line per output line, "OUTPUT<tab>FILE<tab>LINE",
// the file as named on disk.
QByteArray LineMapText(const QList<SourcePlace> &map);

// The editor's File menu command: the questions, the output name, the
// messages. The save dialog and the working file name belong to the editor.
class Unraveller {
public:
    explicit Unraveller(AppContext &context);

    // The save dialog titled "Save " + caption + " as": the chosen path as
    // typed, empty when cancelled.
    std::function<QString(const QString &caption)> askSaveName;
    std::function<void(const QString &name)> setWorkingFileName;

    // `sourceName` is the window's caption (the upper-cased path).
    void Unravel(const QString &sourceName);

    static QString Question(const QString &name);

private:
    struct Output {
        QString path; // on disk; empty when the user gave up
        QString name; // as the messages show it
    };
    Output ChooseOutput(const QString &sourceName);

    AppContext &m_context;
};

} // namespace kvr
