// Any reply line from the board: the error and redefinition readers cut
// their text out of the reply itself.
#include "FuzzInput.h"
#include "compiler/ReplyChecks.h"

using namespace kvr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString reply = fuzz::Latin1(data, size);
    if (const auto error = BoardErrorText(reply))
        fuzz::Require(reply.endsWith(*error) && error->contains(QLatin1String(" ?  - ")), "error text is the reply's tail");
    if (const auto unique = NotUniqueText(reply))
        fuzz::Require(reply.contains(*unique) && unique->endsWith(QLatin1String("NOT UNIQUE")), "warning text is in the reply");
    return 0;
}
