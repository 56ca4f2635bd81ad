// #IF / #ELSEIF / #ELSE / #ENDIF lines in any order: the machine stays in
// one of its states and answers skip, compile or out of order.
#include "FuzzInput.h"
#include "compiler/ConditionalCompilation.h"

using namespace kvr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QStringList lines = fuzz::Lines(data, size);
    const QString condition = lines.takeFirst();
    int state = OutsideBlock;
    for (QString &line : lines) {
        const int before = state;
        const int r = EvaluateDirective(line, state, condition);
        fuzz::Require(r >= -1 && r <= 1, "answer is -1, 0 or 1");
        fuzz::Require(state >= OutsideBlock && state <= ElseIfNotTakenYet, "state in range");
        fuzz::Require(r != -1 || state == before, "out of order leaves the state");
    }
    return 0;
}
