#include "cli/ConsoleTerminal.h"
#include "link/Link.h"
#include "link/Terminal.h"

namespace kvr {

void ConsoleTerminal::SendInterrupt()
{
    // Ctrl-C means stop now: no reply is awaited, since a board that does not
    // answer would hold the halt for two time-outs. The run ends right after
    // and what the board sends back is discarded.
    m_link.SendText(Terminal::InterruptSequence, true);
    m_link.SendText(QString(QChar(13)), false);
}

} // namespace kvr
