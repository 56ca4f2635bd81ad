#pragma once
// A words database file (SQLite, named .MDB as the templates are): table
// ROM with index inxWord, tblSuggest with index inxError, and tblReferences
// (every counted reference, for "used by"). The builder creates no table:
// the template must hold them, which Open checks.
#include "words/Suggestions.h"
#include "words/WordTable.h"
#include <QString>

namespace kvr {

class WordsDatabase {
public:
    explicit WordsDatabase(const QString &path);
    ~WordsDatabase();
    WordsDatabase(const WordsDatabase &) = delete;
    WordsDatabase &operator=(const WordsDatabase &) = delete;

    // False when the file is missing, is no database, or lacks a table or
    // field (an older or foreign file).
    bool Open();
    void Close();

    // Every record of ROM in index order, with its counted references.
    bool LoadWords(WordTable &table);
    // tblSuggest in the order of inxError.
    bool LoadRules(QList<SuggestRule> &rules);
    // Replaces ROM and tblReferences by the table, in one transaction.
    bool SaveWords(const WordTable &table);
    // Replaces tblSuggest (the template maker).
    bool SaveRules(const QList<SuggestRule> &rules);

    QString LastError() const { return m_error; }

    // Makes an empty database with the tables and indexes of a template.
    static bool Create(const QString &path, QString &error);

private:
    bool Fail(const QString &what);

    QString m_path;
    QString m_connection;
    QString m_error;
};

} // namespace kvr
