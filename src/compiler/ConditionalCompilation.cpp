#include "compiler/ConditionalCompilation.h"

namespace kvr {

namespace {

// From 0-based `from` up to the first blank at or after it, or to the end.
QString WordAt(const QString &upper, qsizetype from)
{
    const qsizetype blank = upper.indexOf(QLatin1Char(' '), from);
    return blank < 0 ? upper.mid(from) : upper.mid(from, blank - from);
}

} // namespace

int EvaluateDirective(QString &line, int &state, const QString &conditionValue)
{
    const QString u = line.toUpper();
    if (u.startsWith(QLatin1String("#IF "))) {
        if (state != OutsideBlock)
            return -1;
        if (WordAt(u, 4) == conditionValue) {
            state = IfTaken;
            line.clear();
        } else {
            state = IfNotTaken;
        }
    } else if (u.startsWith(QLatin1String("#ELSE")) && !u.startsWith(QLatin1String("#ELSEIF "))) {
        switch (state) {
        case IfTaken:
        case ElseIfTaken:
        case ElseIfAfterTaken:
            state = ElseAfterTaken;
            break;
        case IfNotTaken:
        case ElseIfNotTakenYet:
            state = ElseTaken;
            line.clear();
            break;
        default:
            return -1;
        }
    } else if (u.startsWith(QLatin1String("#ELSEIF "))) {
        switch (state) {
        case IfTaken:
        case ElseIfTaken:
        case ElseIfAfterTaken:
            state = ElseIfAfterTaken;
            break;
        case IfNotTaken:
        case ElseIfNotTakenYet:
            if (WordAt(u, 8) == conditionValue) {
                state = ElseIfTaken;
                line.clear();
            } else {
                state = ElseIfNotTakenYet;
            }
            break;
        default:
            return -1;
        }
    } else if (u.startsWith(QLatin1String("#ENDIF"))) {
        if (state == OutsideBlock)
            return -1;
        state = OutsideBlock;
        line.clear();
    }
    return state <= ElseTaken ? 1 : 0;
}

} // namespace kvr
