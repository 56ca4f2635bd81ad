#pragma once
// The terminal of the window-less program: there is no screen, so the
// board's traffic and the progress bar go nowhere; the interrupt sequence
// (a halt) is sent as the terminal window sends it, without its waits.
#include "link/TerminalHost.h"

namespace kvr {

class Link;

class ConsoleTerminal : public TerminalHost {
public:
    explicit ConsoleTerminal(Link &link) : m_link(link) {}

    void SetInputTimerEnabled(bool) override {}
    void ShowBytes(const QByteArray &) override {}
    void ClearScreen() override {}
    void BringForward() override {}
    void SetProgressVisible(bool) override {}
    int ProgressCapacity() const override { return 0; }
    QString ProgressText() const override { return m_progress; }
    void SetProgressText(const QString &text) override { m_progress = text; }
    void SendInterrupt() override;

private:
    Link &m_link;
    QString m_progress;
};

} // namespace kvr
