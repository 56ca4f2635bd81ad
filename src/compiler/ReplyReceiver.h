#pragma once
// Collects one reply line from the board, either painted on the terminal
// (ReceiveLineShown) or silently into the 160-character quiet buffer with a
// progress step per line (ReceiveLineQuiet). Each call takes what has
// arrived; true once a line feed completed the line (then in ReplyLine).
#include "compiler/CompileState.h"

namespace kvr {

class Link;
class TerminalHost;

class ReplyReceiver {
public:
    ReplyReceiver(Link &link, TerminalHost *terminal, CompileState &state)
        : m_link(link), m_terminal(terminal), m_state(state) {}

    bool ReceiveLineShown();
    bool ReceiveLineQuiet();
    // One more block on the progress bar, restarting when it is full.
    void ProgressStep();

private:
    Link &m_link;
    TerminalHost *m_terminal;
    CompileState &m_state;
};

} // namespace kvr
