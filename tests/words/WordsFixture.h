#pragma once
// A words-database set-up without windows: a settings folder with the real
// templates, scripted prompts, a fixed report date, and readers of what
// the build left in the database and the report.
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/ScriptedPrompts.h"
#include "app/Text.h"
#include "words/DatabaseBuilder.h"
#include "TempDir.h"
#include "TestClock.h"
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QtTest>

namespace kvr::test {

struct WordsFixture {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    std::unique_ptr<AppContext> context;
    std::unique_ptr<DatabaseBuilder> builder;
    int settingsWrites = 0;
    // Long enough that stored file names are shortened.
    QString folder = dir.filePath(QStringLiteral("a-folder-with-a-rather-long-name"));

    explicit WordsFixture(const QString &type = QStringLiteral("4410ANS"))
    {
        const Paths paths(dir.filePath(QStringLiteral("settings")));
        paths.Prepare();
        context = std::make_unique<AppContext>(paths, prompts, clock);
        context->settings.computerType = type;
        builder = std::make_unique<DatabaseBuilder>(*context);
        builder->SetSettingsWriter([this] { ++settingsWrites; });
        builder->SetClock([] { return QDateTime(QDate(2024, 3, 7), QTime(9, 5)); });
        builder->SetYield({});
    }

    // Writes a source file (lines joined with CR LF); gives its logical name.
    QString Write(const QString &name, const QStringList &lines)
    {
        const QString path = folder + QLatin1Char('/') + name;
        WriteAll(path, (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toLatin1());
        return LogicalName(path);
    }
    QString Main() const { return LogicalName(folder + QStringLiteral("/MAIN.KVR")); }

    // Make database on MAIN.KVR: OK, then Yes or No to the suggestions.
    void Make(bool suggestions = false, const QString &main = QString())
    {
        prompts.answers << PromptAnswer::Ok << (suggestions ? PromptAnswer::Yes : PromptAnswer::No);
        builder->MakeDatabase(main.isEmpty() ? Main() : main);
    }

    // Rows of the database as "a|b|c", Null as "-", CR LF as "\n"; a user
    // word's File is checked against its full path and given as the file name.
    QStringList Rows(const QString &sql) const
    {
        QStringList rows;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("check"));
            db.setDatabaseName(ResolvePath(DatabaseBuilder::DerivedPath(Main(), QStringLiteral(".MDB"))));
            db.open();
            QSqlQuery query(sql, db);
            while (query.next()) {
                QStringList fields;
                for (int i = 0; i < query.record().count(); ++i) {
                    const QVariant v = query.value(i);
                    QString text = v.isNull() ? QStringLiteral("-") : v.toString();
                    fields << text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
                }
                rows << fields.join(QLatin1Char('|'));
            }
        }
        QSqlDatabase::removeDatabase(QStringLiteral("check"));
        return rows;
    }
    // User words: Word|Definition|file name|References.
    QStringList UserWords() const
    {
        QStringList rows;
        for (const QString &row : Rows(QStringLiteral("SELECT Word, Definition, File, \"References\", Path FROM ROM "
                                                      "WHERE File IS NOT NULL ORDER BY Word COLLATE NOCASE"))) {
            QStringList f = row.split(QLatin1Char('|'));
            const QString name = f[4].mid(f[4].lastIndexOf(QLatin1Char('/')) + 1);
            f[2] = f[2] == ShortenPath(f[4]) ? name : QStringLiteral("BAD FILE ") + f[2];
            rows << f.mid(0, 4).join(QLatin1Char('|'));
        }
        return rows;
    }
    QString References(const QString &word) const
    {
        return Rows(QStringLiteral("SELECT \"References\" FROM ROM WHERE Word = '%1' COLLATE NOCASE").arg(word))
            .value(0, QStringLiteral("absent"));
    }
    QStringList Report() const
    {
        const QString path = ResolvePath(DatabaseBuilder::DerivedPath(Main(), QStringLiteral(".SUG")));
        return QString::fromLatin1(ReadAll(path)).split(QStringLiteral("\r\n"));
    }
};

} // namespace kvr::test
