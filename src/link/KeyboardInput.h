#pragma once
// What the terminal's keys mean to the board: control chords, the Caps Lock
// rule for letters, and the recall of lines typed before.
#include <QChar>
#include <QString>
#include <QStringList>

namespace kvr {

// The control character Ctrl+key sends (Ctrl+A is 1 ... Ctrl+Z 26, Ctrl+[ to
// Ctrl+_ 27 to 31, Ctrl+@ 0); -1 when the key makes none.
int ControlCode(int qtKey);

// The letter a key gives while Caps Lock is on: capitals, small letters with
// Shift. A null QChar for keys other than A to Z.
QChar CapsLockLetter(int qtKey, bool shift);

// The lines typed in the terminal this session, and the line being typed.
class LineHistory {
public:
    static constexpr int Capacity = 100;

    // Follows every character sent: CR ends the line, backspace takes one back.
    void Sent(QChar c);
    // What to send so that the line being typed becomes the one before (Up)
    // or after (Down): backspaces over what was sent, then the recalled text.
    // Empty when there is nothing to recall in that direction.
    QString Recall(bool up);

    const QStringList &Lines() const { return m_lines; }
    QString Current() const { return m_current; }

private:
    QStringList m_lines;
    QString m_current;
    int m_index = 0; // m_lines.size() stands for the new, unsent line
};

} // namespace kvr
