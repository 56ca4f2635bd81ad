// kvr-mktemplate: builds a template words database from the readable lists
// under data/words, at build time.
//   kvr-mktemplate OUT.MDB --rules FILE.rules LIST.words...
#include "words/WordLists.h"
#include "words/WordsDatabase.h"
#include <QCoreApplication>
#include <QFile>
#include <cstdio>

namespace {

bool ReadText(const QString &path, QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "kvr-mktemplate: %s: %s\n", qPrintable(path), qPrintable(file.errorString()));
        return false;
    }
    text = QString::fromUtf8(file.readAll());
    return true;
}

bool Report(const QString &path, const QList<kvr::ListProblem> &problems)
{
    for (const kvr::ListProblem &problem : problems)
        std::fprintf(stderr, "%s:%d: %s\n", qPrintable(path), problem.line, qPrintable(problem.text));
    return problems.isEmpty();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QStringList args = QCoreApplication::arguments().mid(1);
    const qsizetype rulesAt = args.indexOf(QStringLiteral("--rules"));
    if (args.size() < 4 || rulesAt != 1) {
        std::fputs("usage: kvr-mktemplate OUT.MDB --rules FILE.rules LIST.words...\n", stderr);
        return 3;
    }
    const QString output = args.at(0);
    const QString rulesPath = args.at(2);
    const QStringList lists = args.mid(3);

    kvr::WordTable table;
    bool ok = true;
    for (const QString &list : lists) {
        QString text;
        if (!ReadText(list, text))
            return 1;
        QList<kvr::ListProblem> problems;
        for (const kvr::ListedWord &listed : kvr::ParseWordList(text, problems)) {
            if (table.Find(listed.name)) {
                problems.append({listed.line, QStringLiteral("%1 is listed twice").arg(listed.name)});
                continue;
            }
            kvr::WordRecord record;
            record.word = listed.name;
            record.definition = listed.Definition();
            table.Add(record);
        }
        ok = Report(list, problems) && ok;
    }
    QString rulesText;
    if (!ReadText(rulesPath, rulesText))
        return 1;
    QList<kvr::ListProblem> problems;
    const QList<kvr::SuggestRule> rules = kvr::ParseRules(rulesText, problems);
    ok = Report(rulesPath, problems) && ok;
    if (!ok)
        return 1;

    QString error;
    const QString partial = output + QStringLiteral(".part");
    if (!kvr::WordsDatabase::Create(partial, error)) {
        std::fprintf(stderr, "kvr-mktemplate: %s: %s\n", qPrintable(output), qPrintable(error));
        return 1;
    }
    {
        kvr::WordsDatabase database(partial);
        if (!database.Open() || !database.SaveWords(table) || !database.SaveRules(rules)) {
            std::fprintf(stderr, "kvr-mktemplate: %s: %s\n", qPrintable(output), qPrintable(database.LastError()));
            return 1;
        }
    }
    QFile::remove(output);
    if (!QFile::rename(partial, output)) {
        std::fprintf(stderr, "kvr-mktemplate: cannot write %s\n", qPrintable(output));
        return 1;
    }
    return 0;
}
