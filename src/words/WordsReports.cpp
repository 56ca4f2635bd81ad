#include "words/WordsReports.h"
#include "app/Text.h"
#include "compiler/CompileState.h"
#include "words/WordsText.h"

namespace kvr {

WordStatistics WordStatistics::Of(const QList<const WordRecord *> &records)
{
    WordStatistics s;
    for (const WordRecord *record : records) {
        const bool used = record->references.has_value();
        if (!record->IsUserWord()) {
            (used ? s.romUsed : s.romUnused)++;
            continue;
        }
        if (!used) {
            ++s.userUnused;
            s.unreferenced.append({record->word, *record->file});
            continue;
        }
        ++s.userUsed;
        if (*record->references == 1)
            s.usedOnce.append({record->word, *record->file});
        if (!s.files.contains(*record->file) && s.files.size() < MaxIncludeFiles)
            s.files.append(*record->file);
    }
    return s;
}

namespace {

void WordList(QStringList &lines, const QStringList &heading, const QList<ListedUserWord> &words)
{
    lines << Separator() << heading;
    lines << (words.size() == 1 ? QStringLiteral("There is only one")
                                : QStringLiteral("There are ") + QString::number(words.size()))
                 + QStringLiteral(" of these definitions.");
    lines << QString();
    for (const ListedUserWord &listed : words)
        lines << PadToColumn(listed.word, 33) + listed.file;
    lines << QString();
}

} // namespace

QStringList ClosingSections(const WordStatistics &s, const QString &sourcePath)
{
    const QString source = ShortenPath(sourcePath);
    QStringList lines;
    if (s.romUsed + s.userUsed == 0)
        lines << QStringLiteral("   No referenced definitions found in ") + source;
    if (!s.files.isEmpty()) {
        lines << Separator() << QStringLiteral("Files needed for ") + source << QString();
        lines << s.files;
        lines << QString();
    } else {
        lines << QString();
    }
    lines << Separator()
          << QStringLiteral("Total number of definitions used: ") + QString::number(s.romUsed + s.userUsed)
          << QString() << QStringLiteral("Forth ROM definitions     used:   ") + QString::number(s.romUsed)
          << QStringLiteral("Forth ROM definitions not used:   ") + QString::number(s.romUnused)
          << QStringLiteral("User defined words        used:   ") + QString::number(s.userUsed)
          << QStringLiteral("User defined words    not used:   ") + QString::number(s.userUnused) << QString();
    if (!s.unreferenced.isEmpty())
        WordList(lines,
                 {QStringLiteral("These definitions are not referenced."),
                  QStringLiteral("Since they are user defined they are candidates for deletion.")},
                 s.unreferenced);
    if (!s.usedOnce.isEmpty())
        WordList(lines,
                 {QStringLiteral("These definitions have been referenced only once."),
                  QStringLiteral("Since they are userdefined it may be possible to move them to in-line code"),
                  QStringLiteral("to save PROM space, possibly at the expense of making the code less readable.")},
                 s.usedOnce);
    return lines;
}

QStringList AlphanumericReport(const QList<const WordRecord *> &records, const QString &sourcePath,
                               const QDateTime &when, const QStringList &suggestions)
{
    QStringList lines;
    lines << HeadingLine(QStringLiteral("ALPHANUMERIC DEFINITIONS IN ") + ShortenPath(sourcePath), when);
    lines << CautionLines();
    for (const WordRecord *record : records) {
        if (!record->IsUserWord() && !record->references)
            continue;
        const QString where = record->file ? QStringLiteral("File ") + ShortenPath(*record->file)
                                           : QStringLiteral("In Forth ROM (or library file if indicated)");
        const QString count = record->references
            ? QString::number(*record->references) + QStringLiteral(" reference")
                  + (*record->references == 1 ? QString() : QStringLiteral("s"))
            : QStringLiteral("UNREFERENCED");
        lines << Separator();
        lines << PadToColumn(PadToColumn(record->word.left(19), 21) + where, 66) + count;
        lines << QString();
        lines << record->definition.split(QStringLiteral("\r\n"));
        lines << QString();
    }
    lines << QString(QChar(12)) << QString();
    lines << suggestions;
    return lines;
}

} // namespace kvr
