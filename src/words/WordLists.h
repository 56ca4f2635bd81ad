#pragma once
// The readable sources of the templates under data/words: word lists (one
// word a line: name, stack effect in parentheses, description) and
// suggestion rules ("WORDS -> REPLACEMENT" or "WORDS -- note"). Lines
// beginning with "\" and a blank are comments, as in Forth, except the
// entry of the word \ itself, which has a stack effect after it.
#include "words/Suggestions.h"
#include <QList>
#include <QString>

namespace kvr {

struct ListedWord {
    QString name;
    QString stackEffect; // with its parentheses; empty for a notation entry
    QString description;
    int line = 0;        // in its list, for messages

    // The template's Definition: the stack effect, then the description.
    QString Definition() const;
};

struct ListProblem {
    int line = 0;
    QString text;
};

QList<ListedWord> ParseWordList(const QString &text, QList<ListProblem> &problems);
QList<SuggestRule> ParseRules(const QString &text, QList<ListProblem> &problems);

} // namespace kvr
