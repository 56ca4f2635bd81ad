#pragma once
// The table ROM of a words database held in memory while the builder reads:
// looked up by word without regard to ASCII case (as the index inxWord
// compares), walked in index order, written back in one piece.
#include <QHash>
#include <QList>
#include <QString>
#include <optional>

namespace kvr {

// One counted reference: where the token stood.
struct ReferenceSite {
    QString file; // the path the file was opened under
    int line = 0;
};

struct WordRecord {
    QString word;
    QString definition;
    std::optional<QString> file;      // shortened; none for a word of the template
    std::optional<qint32> references; // none: never referenced
    int line = 0;                     // where the definition starts; 0 for the template's
    QString path;                     // the file in full; empty for the template's
    QList<ReferenceSite> sites;       // one per reference counted

    bool IsUserWord() const { return file.has_value(); }
};

// The key of the word index: ASCII letters folded to lower case, nothing else.
QString WordKey(QStringView word);

class WordTable {
public:
    // The first record of that word in index order, or null.
    WordRecord *Find(QStringView word);
    const WordRecord *Find(QStringView word) const;
    // Deletes the record Find gives; false when there is none.
    bool Remove(QStringView word);
    void Add(WordRecord record);
    // References = 1 when none, else one more, and the site kept; false
    // when the token is no word of the table.
    bool Count(QStringView token, const QString &file, int line);
    qsizetype Size() const { return m_size; }
    void Clear();
    // Every record in the order of the word index.
    QList<const WordRecord *> InIndexOrder() const;

private:
    // Records of one key in the order they came; normally one.
    QHash<QString, QList<WordRecord>> m_records;
    qsizetype m_size = 0;
};

} // namespace kvr
