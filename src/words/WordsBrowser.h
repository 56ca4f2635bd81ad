#pragma once
// The words window without its window: the records of the open database,
// the list entries made of them, the seek by an entry, the texts shown for
// the selected record, where it is used, the filter, and the reports.
#include "words/WordTable.h"
#include "words/WordsDatabase.h"
#include <QDateTime>
#include <QRect>
#include <QStringList>
#include <memory>

namespace kvr {

class Prompts;

class WordsBrowser {
public:
    // Opens the database and reads table ROM; false (database closed) when
    // it cannot be read.
    bool Load(const QString &databasePath);
    void Close();
    bool IsOpen() const { return m_database != nullptr; }

    QString DatabasePath() const { return m_path; }
    // The source the database was made of, and its suggestions report.
    QString SourcePath() const;
    QString SuggestionsPath() const;

    const QList<const WordRecord *> &Records() const { return m_records; }
    // Rows of the records whose word holds `text`, without regard to case;
    // every row for an empty text.
    QList<int> Filter(const QString &text) const;
    // Seek ">=" on the entry less its leading blank, cut to 11 characters:
    // the first record at or after it in index order, the last record when
    // there is none; -1 when the table is empty.
    int Seek(const QString &entry) const;

    // The alphanumeric report, with the suggestions report when there is one.
    QStringList Report(const QDateTime &when) const;

    // " " + the word cut or padded to 11 + "|" (referenced user word) or
    // character 31 (unreferenced user word).
    static QString ListEntry(const WordRecord &record);
    static QString FileText(const WordRecord &record);
    static QString ReferencesText(const WordRecord &record);
    // One line per counted reference: the file and the line number.
    static QStringList UsedBy(const WordRecord &record);

private:
    QString m_path;
    std::unique_ptr<WordsDatabase> m_database;
    WordTable m_table;
    QList<const WordRecord *> m_records;
    QStringList m_keys; // WordKey of each record, in index order
};

// The blank-delimited word at `position` of `text` (the one the caret is
// in or just after); empty when the caret stands between blanks.
QString WordAt(const QString &text, int position);

// The part of a word that completes the last word of `line` from `words`
// (sorted by WordKey): what all candidates share beyond it, and a blank
// after a word that is the only candidate. Empty when nothing completes.
QString Completion(const QStringList &words, const QString &line);

// Completion from the words of a database file, read again when the file
// or its path changes.
class WordCompleter {
public:
    QString Complete(const QString &databasePath, const QString &line);

private:
    QString m_path;
    QDateTime m_modified;
    QStringList m_words;
};

// The lines of a text file (CR LF, LF or CR), Latin-1; none when unreadable.
QStringList ReadTextLines(const QString &path);
// Writes `lines` each with CR LF; the file system's error text, or empty.
QString WriteTextLines(const QString &path, const QStringList &lines);

// Where the suggestions text goes in the report view of a window whose
// inner size is `inner`: under a heading band of 0.09 of the height, 0.82
// of the height tall (so ending at 0.91), the full width less a margin of 2.
QRect ReportTextGeometry(const QSize &inner);

// Row height of the words list in pixels: the editor font size times 12
// plus 3, read as tenths of a point, at `dpi` dots per inch.
int ListRowHeight(int fontSize, double dpi);

// The longest report text the report view holds, as a text box did.
inline constexpr int ReportViewCapacity = 65535;

} // namespace kvr
