#include "words/Suggestions.h"
#include "app/Text.h"
#include "compiler/SourceText.h"
#include "words/WordsText.h"

namespace kvr {

namespace {
// A table whose corrections feed each other could rewrite a line forever;
// no line of a sound table needs more rewrites than it has words.
constexpr int MaxRewrites = 1000;

bool IsDataLine(const QString &worked)
{
    static const QStringList markers{QStringLiteral(" C, "),       QStringLiteral(" , "),
                                     QStringLiteral(" W "),        QStringLiteral(" B "),
                                     QStringLiteral(")) "),        QStringLiteral("## "),
                                     QStringLiteral("VALUE "),     QStringLiteral("VARIABLE "),
                                     QStringLiteral("CONSTANT ")};
    for (const QString &marker : markers)
        if (worked.contains(marker))
            return true;
    return false;
}
} // namespace

SuggestionAnalysis::SuggestionAnalysis(const QString &computerType, QList<SuggestRule> rules)
    : m_computerType(computerType), m_rules(std::move(rules))
{
}

void SuggestionAnalysis::AnalyseLine(const QString &file, const QString &line, QStringList &report)
{
    QString worked = QLatin1Char(' ') + line + QLatin1Char(' ');
    BlankStrings(worked, m_computerType);
    if (worked.contains(QLatin1Char('[')))
        BlankBrackets(worked);

    if (IsDataLine(worked)) {
        if (worked.startsWith(QLatin1String(" VALUE ")))
            report << Separator() << QStringLiteral("This replacement is necessary in ") + ShortenPath(file) << line
                   << RTrim(QStringLiteral("0 VALUE ") + worked.mid(7));
        return;
    }
    CaseRule(file, line, worked, report);
    IfRule(file, line, worked, report);
    TableRule(file, line, worked, report);
}

// A new definition (a line beginning ": ") starts the CASE and IF rules afresh.
void SuggestionAnalysis::CaseRule(const QString &file, const QString &line, const QString &worked,
                                  QStringList &report)
{
    if (line.startsWith(QLatin1String(": ")) || m_ofCount == 0)
        m_caseReported.clear();
    if (worked.contains(QLatin1String(" OF ")))
        ++m_ofCount;
    if (worked.contains(QLatin1String(" CASE "))) {
        m_ofCount = 0;
        m_caseLine = line;
    }
    if (m_ofCount > 12 && worked.contains(QLatin1String(" END-CASE ")) && file != m_caseReported) {
        report << Separator() << QStringLiteral("Suggest vectored execution table instead of CASE in ") + ShortenPath(file)
               << QStringLiteral(" Eg:  CREATE  ' AAA ,  ' BBB ,  ' CCC ,  where AAA BBB CCC etc are Forth")
               << QStringLiteral(" definitions corresponding to clauses inside OF ... ENDOF structures.")
               << m_caseLine;
        m_caseReported = file;
    }
}

void SuggestionAnalysis::IfRule(const QString &file, const QString &line, const QString &worked,
                                QStringList &report)
{
    if (line.startsWith(QLatin1String(": ")) || m_ifDepth == 0) {
        m_ifReported.clear();
        m_ifDepth = 0;
    }
    if (worked.contains(QLatin1String(" IF "))) {
        if (++m_ifDepth == 1)
            m_ifLine = line;
    }
    if (worked.contains(QLatin1String(" THEN ")))
        --m_ifDepth;
    if (m_ifDepth > 6 && file != m_ifReported) {
        report << Separator() << QStringLiteral("Suggest factoring replace nested IFs in ") + ShortenPath(file) << m_ifLine;
        m_ifReported = file;
    }
}

void SuggestionAnalysis::TableRule(const QString &file, const QString &line, QString worked, QStringList &report)
{
    QStringList notes;
    bool notesFound = false;
    bool replaced = false;
    qsizetype start = 0; // where the search begins (the search start less one)
    int rewrites = 0;
    for (qsizetype i = 0; i < m_rules.size();) {
        const SuggestRule &rule = m_rules[i];
        const qsizetype at = worked.indexOf(QLatin1Char(' ') + rule.error + QLatin1Char(' '), start);
        if (at < 0) {
            ++i;
            continue;
        }
        if (!rule.correction) {
            notes << rule.notes;
            start = at + 1;
            notesFound = true;
        } else {
            if (++rewrites > MaxRewrites)
                break;
            worked = worked.left(at + 1) + *rule.correction + worked.mid(at + 1 + rule.error.size());
            start = 0;
            replaced = true;
        }
        i = 0;
    }
    if (!notesFound && !replaced)
        return;
    report << Separator();
    const QString shortFile = ShortenPath(file);
    for (const QString &note : std::as_const(notes))
        report << note + QStringLiteral(" in ") + shortFile;
    if (replaced)
        report << QStringLiteral("Suggest this replacement in ") + shortFile << line;
    report << TrimBlanks(worked);
}

} // namespace kvr
