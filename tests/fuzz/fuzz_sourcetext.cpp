// Source lines through the quick-compile reduction, the unravel stripper
// and the name and number readers.
#include "FuzzInput.h"
#include "compiler/SourceText.h"
#include "compiler/Unravel.h"

using namespace kvr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    for (const QString &line : fuzz::Lines(data, size)) {
        QString compact = line;
        CompactLine(compact);
        fuzz::Require(compact.size() <= line.size(), "CompactLine never lengthens");
        QString stripped = line;
        StripLine(stripped);
        IncludeName(line);
        ConditionWord(line);
        const int number = ErrorLineNumber(line);
        fuzz::Require(number >= 0 && number <= 999, "three digits at most");
        fuzz::Require(TrimBlanks(line).size() <= line.size(), "trim never lengthens");
    }
    return 0;
}
