#pragma once
// What the compiler and the other board dialogues need from the terminal
// window, so that they can be driven and tested without it.
#include <QByteArray>
#include <QString>

namespace kvr {

class TerminalHost {
public:
    virtual ~TerminalHost() = default;

    // Switches the terminal's own receive polling (ComInputTimer) on or off;
    // off while another reader takes the board's replies.
    virtual void SetInputTimerEnabled(bool enabled) = 0;
    // Paints received bytes on the terminal screen with its control-code
    // rules, writing them to the capture file first when capturing.
    virtual void ShowBytes(const QByteArray &bytes) = 0;
    virtual void ClearScreen() = 0;
    virtual void BringForward() = 0;

    // The no-display progress labels (lblCompilation, lblProgress):
    // shown centred in the terminal, or hidden.
    virtual void SetProgressVisible(bool visible) = 0;
    // How many progress blocks fit in lblCompilation.
    virtual int ProgressCapacity() const = 0;
    virtual QString ProgressText() const = 0;
    virtual void SetProgressText(const QString &text) = 0;

    // The interrupt sequence and its two waits (F2).
    virtual void SendInterrupt() = 0;
};

} // namespace kvr
