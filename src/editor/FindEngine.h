#pragma once
// The search state kept between searches and the engine that looks for the
// string in an editor's text, asking to continue at the other end.
#include <QString>

namespace kvr {

class Prompts;

struct FindState {
    QString gFindString;
    int gFindCase = 0;       // 1: the case must match
    int gFindDirection = 1;  // 1 down, 0 up
    int gCurPos = 0;         // caret the last search left
    bool gFirstTime = true;  // between opening the dialog and the first search
    QString gLastFound;      // as last compared (upper case when ignoring case)
};

// What the Find dialog starts with: the selection when there is one,
// otherwise the last string compared.
QString FindPrefill(const FindState &state, const QString &selectedText);

// Searches `text` from the selection and moves the selection to the match.
// False when the user declined to continue at the other end.
bool FindIt(FindState &state, const QString &text, int &selStart, int &selLength,
            Prompts &prompts);

} // namespace kvr
