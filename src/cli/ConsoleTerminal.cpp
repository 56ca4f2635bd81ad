#include "cli/ConsoleTerminal.h"
#include "link/Link.h"
#include "link/Terminal.h"

namespace kvr {

void ConsoleTerminal::SendInterrupt()
{
    m_link.SendText(Terminal::InterruptSequence, true);
    m_link.WaitForReply();
    m_link.SendText(QString(QChar(13)), false);
    m_link.WaitForReply();
}

} // namespace kvr
