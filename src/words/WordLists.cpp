#include "words/WordLists.h"
#include "compiler/SourceText.h"

namespace kvr {

namespace {

// The lines that carry entries, with their 1-based numbers.
template <typename Take>
void ForEachEntry(const QString &text, Take take)
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines[i];
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const QString trimmed = TrimBlanks(line);
        // The entry of the word \ itself has its stack effect after the name.
        const bool comment = trimmed.startsWith(QLatin1Char('\\'))
                             && (trimmed.size() == 1
                                 || (trimmed[1] == QLatin1Char(' ')
                                     && !TrimBlanks(trimmed.mid(1)).startsWith(QLatin1String("( "))));
        if (trimmed.isEmpty() || comment)
            continue;
        take(trimmed, static_cast<int>(i + 1));
    }
}

} // namespace

QString ListedWord::Definition() const
{
    if (stackEffect.isEmpty())
        return description;
    return stackEffect + QStringLiteral("\r\n") + description;
}

QList<ListedWord> ParseWordList(const QString &text, QList<ListProblem> &problems)
{
    QList<ListedWord> words;
    ForEachEntry(text, [&](const QString &line, int number) {
        ListedWord word;
        word.line = number;
        const qsizetype gap = line.indexOf(QLatin1Char(' '));
        word.name = gap < 0 ? line : line.left(gap);
        QString rest = gap < 0 ? QString() : TrimBlanks(line.mid(gap));
        // A stack effect opens with "( " and ends at the first ")" after it.
        if (rest.startsWith(QLatin1String("( "))) {
            const qsizetype close = rest.indexOf(QLatin1Char(')'), 2);
            if (close < 0) {
                problems.append({number, QStringLiteral("stack effect without \")\"")});
                return;
            }
            word.stackEffect = rest.left(close + 1);
            rest = TrimBlanks(rest.mid(close + 1));
            // Words that touch the return stack give its effect too.
            while (rest.startsWith(QLatin1String("( R: ")) || rest.startsWith(QLatin1String("( C: "))) {
                const qsizetype more = rest.indexOf(QLatin1Char(')'), 2);
                if (more < 0)
                    break;
                word.stackEffect += QLatin1Char(' ') + rest.left(more + 1);
                rest = TrimBlanks(rest.mid(more + 1));
            }
        }
        word.description = rest;
        if (word.description.isEmpty())
            problems.append({number, QStringLiteral("no description for ") + word.name});
        else
            words.append(word);
    });
    return words;
}

QList<SuggestRule> ParseRules(const QString &text, QList<ListProblem> &problems)
{
    QList<SuggestRule> rules;
    ForEachEntry(text, [&](const QString &line, int number) {
        const qsizetype arrow = line.indexOf(QLatin1String(" -> "));
        const qsizetype dashes = line.indexOf(QLatin1String(" -- "));
        SuggestRule rule;
        if (arrow >= 0 && (dashes < 0 || arrow < dashes)) {
            rule.error = TrimBlanks(line.left(arrow));
            rule.correction = TrimBlanks(line.mid(arrow + 4));
        } else if (dashes >= 0) {
            rule.error = TrimBlanks(line.left(dashes));
            rule.notes = TrimBlanks(line.mid(dashes + 4));
        }
        if (rule.error.isEmpty() || (rule.correction ? rule.correction->isEmpty() : rule.notes.isEmpty()))
            problems.append({number, QStringLiteral("neither \"WORDS -> REPLACEMENT\" nor \"WORDS -- note\"")});
        else
            rules.append(rule);
    });
    return rules;
}

} // namespace kvr
