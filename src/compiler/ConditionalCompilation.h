#pragma once
// The #IF / #ELSEIF / #ELSE / #ENDIF machine that decides on the PC which
// source lines reach the board. One level only; state and condition word
// live across files for the whole run.
#include <QString>

namespace kvr {

// States of the machine: 0 outside a block; 1..3 in a taken branch
// (#IF, #ELSEIF, #ELSE); 4..7 in a skipped branch.
enum ConditionalStates : int {
    OutsideBlock = 0,
    IfTaken = 1,
    ElseIfTaken = 2,
    ElseTaken = 3,
    IfNotTaken = 4,
    ElseIfAfterTaken = 5,
    ElseAfterTaken = 6,
    ElseIfNotTakenYet = 7,
};

// -1: directive out of order (state unchanged); 1: compile the line;
// 0: skip it. Directive lines that are taken come back empty.
int EvaluateDirective(QString &line, int &state, const QString &conditionValue);

} // namespace kvr
