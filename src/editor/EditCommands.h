#pragma once
// The editor's keyboard and Edit-menu rules as plain functions over the text
// box: the text with CR LF line ends and a selection, positions 0-based and
// counting CR LF as two characters. The window only applies the results.
#include <QDateTime>
#include <QString>
#include <optional>

namespace kvr {

inline constexpr int MaxLineLength = 80;
inline constexpr int MaxTextLength = 65535;

struct LineInfo {
    int start = 0;  // first character of the line
    int length = 0; // without its line end
};

// The line that holds `position`.
LineInfo GetLineInfo(const QString &text, int position);

// One change of the text box: replace `removed` characters at `start` by
// `inserted`, then select `selStart`/`selLength`. With `changesText` false
// only the selection moves.
struct EditAction {
    bool changesText = false;
    int start = 0;
    int removed = 0;
    QString inserted;
    int selStart = 0;
    int selLength = 0;
    int wantedColumn = -1; // set by Enter and Up/Down
};

// Characters the text box never takes (Backspace and Enter pass).
bool IsDiscardedChar(uint code);

// Enter: at the end of its line the new line repeats the indentation of
// the current one; elsewhere the line is split without indentation.
EditAction EnterAction(const QString &text, int selStart, int selLength);

// Tab with `tabSpaces` > 0: blanks up to the next stop, or nothing when the
// line would pass column 80.
std::optional<EditAction> TabAction(const QString &text, int selStart, int selLength,
                                    int tabSpaces);

// Up/Down keeping the column, padding a shorter target line with blanks.
// Nothing when on the first (up) or last (down) line.
std::optional<EditAction> UpDownAction(const QString &text, int selStart, int selLength,
                                       bool up);

// Delete: one character, a CR LF pair whole, or the selection.
std::optional<EditAction> DeleteAction(const QString &text, int selStart, int selLength);

// ASCII letters change case; every other character is kept.
QString InvertCase(const QString &text);

// "07 Mar 04  14:05"
QString DateStamp(const QDateTime &when);

// The tab width the setting stands for: 2, 3 or 4, anything else 0.
int TabSpacesValue(const QString &setting);

// Start of 1-based line `lineNumber` and the position of its line feed
// (the end of the text when there is none), as the compiler selects it.
struct LineRange {
    int start = 0;
    int end = 0;
};
LineRange LineSelection(const QString &text, int lineNumber);

// Text taken from outside (clipboard, files) in the box's CR LF form.
QString ToCrLf(const QString &text);

} // namespace kvr
