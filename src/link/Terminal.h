#pragma once
// The interactive terminal without its window: the screen buffer, what the
// board's bytes do to it, capture to file, keys typed, the interrupt
// sequence, the cursor blink and the indicators. The window frmEmulator
// forwards its events here and paints what this holds.
#include "app/AppContext.h"
#include "link/KeyboardInput.h"
#include "link/Link.h"
#include "link/ScreenModel.h"
#include "link/TerminalHost.h"
#include <QFile>
#include <QObject>
#include <functional>

namespace kvr {

class Terminal : public QObject, public TerminalHost {
    Q_OBJECT
public:
    // Ctrl-C, Ctrl-Q, Escape, blank, ";".
    static const QString InterruptSequence;
    // Timer ticks between two cursor blinks, and how long the serial error
    // indicator stays up.
    static constexpr int BlinkTicks = 6;
    static constexpr int SerialErrorTicks = 200;
    // Bytes painted between two yields to the event loop inside one batch.
    static constexpr int YieldEvery = 16384;
    // The longest one ShowReceived paints before it returns to the caller.
    static constexpr int ShowBudgetMs = 250;

    Terminal(AppContext &context, Link &link, QObject *parent = nullptr);
    ~Terminal() override;

    ScreenModel &Screen() { return m_screen; }
    const ScreenModel &Screen() const { return m_screen; }
    Link &TheLink() { return m_link; }

    // One ComInputTimer tick: blink, indicator countdown, ShowReceived.
    void Tick();
    // Takes every waiting byte from the link and paints it.
    void ShowReceived();

    // Characters typed in the window, as the keyboard gives them.
    void KeyTyped(const QString &text);
    // F1, F2 and Tab are handled on key down; true when the key was used.
    bool KeyDown(int qtKey, bool shift);
    // A key pressed in the window, with what the keyboard made of it: control
    // chords, line recall (Up, Down), Caps Lock letters, typed characters.
    // True when the key was used.
    bool KeyPressed(int qtKey, Qt::KeyboardModifiers modifiers, const QString &text);
    // Sends text as if typed, line ends as CR, waiting for the board's answer
    // to each line and painting it; F2 stops it.
    void Paste(const QString &text);
    bool IsPasting() const { return m_pasting; }
    const LineHistory &History() const { return m_history; }
    // Ctrl+Space sends what `complete` gives for the line being typed (the
    // rest of its last word); nothing to add beeps.
    void SetCompleter(std::function<QString(const QString &line)> complete) { m_complete = std::move(complete); }
    // Text of the screen and scroll-back between two positions (line counted
    // from the oldest scroll-back line, column), lines joined with LF.
    QString TextBetween(int fromLine, int fromColumn, int toLine, int toColumn) const;

    void ToggleCapture();
    bool IsCapturing() const { return m_capture.isOpen(); }
    QString CapturePath() const { return m_capture.fileName(); }

    void Zap();
    // Flips `Caps Lock, ON or OFF` and saves it.
    void ToggleCapsLock();
    bool CapsLockOn() const { return m_context.settings.IsOn(m_context.settings.capsLock); }
    // Whether this window must make the Caps Lock letters itself because the
    // keyboard's own lock could not be switched.
    void SetCapsLockEmulated(bool emulated) { m_capsEmulated = emulated; }
    bool CapsLockEmulated() const { return m_capsEmulated; }

    bool InputTimerEnabled() const { return m_inputTimerEnabled; }
    bool CursorShown() const { return m_blink; }
    // The indicator stays while the link is down, and for a while after a
    // serial error.
    bool SerialErrorShown() const { return m_serialErrorTicks > 0 || !m_linkDown.isEmpty(); }
    void ShowSerialError();
    // The link went down for `reason`, or came back (empty): a line on the
    // screen says so, and the indicator names the reason.
    void SetLinkState(const QString &reason);
    QString LinkDownReason() const { return m_linkDown; }
    bool ProgressVisible() const { return m_progressVisible; }
    void SetProgressCapacity(int capacity) { m_progressCapacity = capacity; }

    // TerminalHost
    void SetInputTimerEnabled(bool enabled) override;
    void ShowBytes(const QByteArray &bytes) override;
    void ClearScreen() override;
    void BringForward() override { emit BringForwardRequested(); }
    void SetProgressVisible(bool visible) override;
    int ProgressCapacity() const override { return m_progressCapacity; }
    QString ProgressText() const override { return m_progressText; }
    void SetProgressText(const QString &text) override;
    void SendInterrupt() override;

signals:
    void ScreenChanged();
    void InputTimerChanged(bool enabled);
    void CursorBlinked();
    void IndicatorsChanged();
    void ColorsChanged();
    void BringForwardRequested();
    void HelpRequested();
    void FocusEditorRequested();
    // The Caps Lock option changed: the window switches the keyboard's lock.
    void CapsLockChanged(bool on);
    // Opens a file in an editor window (the captured text after a capture).
    void OpenInEditor(const QString &path);

private:
    void SendTyped(const QString &text);
    // Paints what arrives until a line feed, the time-out or F2; false when
    // the paste must stop.
    bool AwaitPastedLine();

    AppContext &m_context;
    Link &m_link;
    ScreenModel m_screen;
    QFile m_capture;
    bool m_inputTimerEnabled = true;
    bool m_blink = false;
    bool m_inShowReceived = false;
    int m_ticks = 0;
    int m_serialErrorTicks = 0;
    QString m_linkDown;
    bool m_progressVisible = false;
    int m_progressCapacity = 40;
    QString m_progressText;
    LineHistory m_history;
    bool m_capsEmulated = false;
    bool m_pasting = false;
    bool m_pasteHalted = false;
    std::function<QString(const QString &)> m_complete;
};

} // namespace kvr
