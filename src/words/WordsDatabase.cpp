#include "words/WordsDatabase.h"
#include <QAtomicInt>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace kvr {

namespace {

QAtomicInt connectionCounter;

const char *const Schema[] = {
    "CREATE TABLE ROM (Word TEXT NOT NULL, Definition TEXT, File TEXT, \"References\" INTEGER, "
    "Line INTEGER, Path TEXT)",
    "CREATE INDEX inxWord ON ROM (Word COLLATE NOCASE)",
    "CREATE TABLE tblSuggest (fldError TEXT NOT NULL, fldCorrection TEXT, fldSuggestNotes TEXT)",
    "CREATE INDEX inxError ON tblSuggest (fldError COLLATE NOCASE)",
    "CREATE TABLE tblReferences (Word TEXT NOT NULL, File TEXT NOT NULL, Line INTEGER NOT NULL)",
    "CREATE INDEX inxReference ON tblReferences (Word COLLATE NOCASE)",
};

// What Open checks: every table and field the program reads or writes.
const char *const Probes[] = {
    "SELECT Word, Definition, File, \"References\", Line, Path FROM ROM LIMIT 0",
    "SELECT fldError, fldCorrection, fldSuggestNotes FROM tblSuggest LIMIT 0",
    "SELECT Word, File, Line FROM tblReferences LIMIT 0",
};

QVariant Nullable(const std::optional<QString> &text)
{
    return text ? QVariant(*text) : QVariant(QMetaType::fromType<QString>());
}

} // namespace

WordsDatabase::WordsDatabase(const QString &path)
    : m_path(path), m_connection(QStringLiteral("kvr-words-%1").arg(connectionCounter.fetchAndAddRelaxed(1)))
{
}

WordsDatabase::~WordsDatabase()
{
    Close();
}

bool WordsDatabase::Fail(const QString &what)
{
    m_error = what;
    return false;
}

bool WordsDatabase::Open()
{
    Close();
    // SQLite would make an empty database of a missing file.
    if (!QFileInfo(m_path).isFile())
        return Fail(QStringLiteral("no such file"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(m_path);
    if (!db.open())
        return Fail(db.lastError().text());
    QSqlQuery query(db);
    for (const char *probe : Probes)
        if (!query.exec(QLatin1String(probe)))
            return Fail(query.lastError().text());
    return true;
}

void WordsDatabase::Close()
{
    if (!QSqlDatabase::contains(m_connection))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
}

bool WordsDatabase::LoadWords(WordTable &table)
{
    table.Clear();
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("SELECT Word, Definition, File, \"References\", Line, Path FROM ROM "
                                   "ORDER BY Word COLLATE NOCASE, rowid")))
        return Fail(query.lastError().text());
    while (query.next()) {
        WordRecord record;
        record.word = query.value(0).toString();
        record.definition = query.value(1).toString();
        if (!query.value(2).isNull())
            record.file = query.value(2).toString();
        if (!query.value(3).isNull())
            record.references = query.value(3).toInt();
        record.line = query.value(4).toInt();
        record.path = query.value(5).toString();
        table.Add(std::move(record));
    }
    if (!query.exec(QStringLiteral("SELECT Word, File, Line FROM tblReferences ORDER BY rowid")))
        return Fail(query.lastError().text());
    while (query.next())
        if (WordRecord *record = table.Find(query.value(0).toString()))
            record->sites.append({query.value(1).toString(), query.value(2).toInt()});
    return true;
}

bool WordsDatabase::LoadRules(QList<SuggestRule> &rules)
{
    rules.clear();
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("SELECT fldError, fldCorrection, fldSuggestNotes FROM tblSuggest "
                                   "ORDER BY fldError COLLATE NOCASE, rowid")))
        return Fail(query.lastError().text());
    while (query.next()) {
        SuggestRule rule;
        rule.error = query.value(0).toString();
        if (!query.value(1).isNull())
            rule.correction = query.value(1).toString();
        rule.notes = query.value(2).toString();
        rules.append(rule);
    }
    return true;
}

bool WordsDatabase::SaveWords(const WordTable &table)
{
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query(db);
    // The file is made afresh from its template at every build: speed
    // matters more than surviving a power cut half-way.
    query.exec(QStringLiteral("PRAGMA synchronous = OFF"));
    if (!db.transaction())
        return Fail(db.lastError().text());
    const auto rollback = [&](const QSqlQuery &failed) {
        const QString error = failed.lastError().text();
        db.rollback();
        return Fail(error);
    };
    if (!query.exec(QStringLiteral("DELETE FROM ROM")) || !query.exec(QStringLiteral("DELETE FROM tblReferences")))
        return rollback(query);
    // Named placeholders: binding by position costs Qt a string per value.
    QSqlQuery word(db);
    QSqlQuery site(db);
    if (!word.prepare(QStringLiteral("INSERT INTO ROM (Word, Definition, File, \"References\", Line, Path) "
                                     "VALUES (:w, :d, :f, :r, :l, :p)")))
        return rollback(word);
    if (!site.prepare(QStringLiteral("INSERT INTO tblReferences (Word, File, Line) VALUES (:w, :f, :l)")))
        return rollback(site);
    const QVariant noText(QMetaType::fromType<QString>());
    const QVariant noNumber(QMetaType::fromType<int>());
    for (const WordRecord *record : table.InIndexOrder()) {
        word.bindValue(QStringLiteral(":w"), record->word);
        word.bindValue(QStringLiteral(":d"), record->definition);
        word.bindValue(QStringLiteral(":f"), Nullable(record->file));
        word.bindValue(QStringLiteral(":r"), record->references ? QVariant(*record->references) : noNumber);
        word.bindValue(QStringLiteral(":l"), record->IsUserWord() ? QVariant(record->line) : noNumber);
        word.bindValue(QStringLiteral(":p"), record->IsUserWord() ? QVariant(record->path) : noText);
        if (!word.exec())
            return rollback(word);
        for (const ReferenceSite &where : record->sites) {
            site.bindValue(QStringLiteral(":w"), record->word);
            site.bindValue(QStringLiteral(":f"), where.file);
            site.bindValue(QStringLiteral(":l"), where.line);
            if (!site.exec())
                return rollback(site);
        }
    }
    if (!db.commit())
        return Fail(db.lastError().text());
    return true;
}

bool WordsDatabase::SaveRules(const QList<SuggestRule> &rules)
{
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    if (!db.transaction())
        return Fail(db.lastError().text());
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("DELETE FROM tblSuggest"))
        || !query.prepare(QStringLiteral("INSERT INTO tblSuggest (fldError, fldCorrection, fldSuggestNotes) "
                                         "VALUES (?, ?, ?)"))) {
        db.rollback();
        return Fail(query.lastError().text());
    }
    for (const SuggestRule &rule : rules) {
        query.bindValue(0, rule.error);
        query.bindValue(1, Nullable(rule.correction));
        query.bindValue(2, rule.notes);
        if (!query.exec()) {
            const QString error = query.lastError().text();
            db.rollback();
            return Fail(error);
        }
    }
    if (!db.commit())
        return Fail(db.lastError().text());
    return true;
}

bool WordsDatabase::Create(const QString &path, QString &error)
{
    QFile::remove(path);
    const QString name = QStringLiteral("kvr-words-create-%1").arg(connectionCounter.fetchAndAddRelaxed(1));
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!db.open()) {
            error = db.lastError().text();
            ok = false;
        } else {
            QSqlQuery query(db);
            for (const char *statement : Schema) {
                if (!query.exec(QLatin1String(statement))) {
                    error = query.lastError().text();
                    ok = false;
                    break;
                }
            }
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}

} // namespace kvr
