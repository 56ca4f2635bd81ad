#pragma once
// Every message box, input box and common dialog goes through Prompts, so
// the windowed program shows real dialogs, tests script the answers and the
// command-line program prints the messages.
#include <QColor>
#include <QFont>
#include <QString>
#include <QStringList>
#include <optional>

namespace kvr {

inline const QString AppTitle = QStringLiteral("KVR-PC for Windows");

enum class PromptIcon { None, Information, Exclamation, Critical, Question };
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
enum class PromptAnswer { Ok, Cancel, Yes, No, Retry };

// The answer a box gives when the user just presses Enter.
PromptAnswer DefaultAnswer(PromptButtons buttons);

class Prompts {
public:
    virtual ~Prompts() = default;

    virtual PromptAnswer Message(const QString &text, PromptIcon icon,
                                 PromptButtons buttons = PromptButtons::Ok,
                                 const QString &caption = AppTitle) = 0;
    // nullopt when cancelled.
    virtual std::optional<QString> Input(const QString &prompt, const QString &caption,
                                         const QString &defaultText) = 0;
    // Empty string when cancelled. `filter` uses Qt's "Text (*.txt);;All (*)" form.
    virtual QString OpenFileName(const QString &caption, const QString &filter,
                                 const QString &folder) = 0;
    virtual QString SaveFileName(const QString &caption, const QString &filter,
                                 const QString &suggestedPath) = 0;
    // `caption` empty: the dialog's own title.
    virtual std::optional<QColor> Color(const QColor &current, const QString &caption = QString()) = 0;
    virtual std::optional<QFont> Font(const QFont &current) = 0;
    // Picks one of `items`; nullopt when cancelled.
    virtual std::optional<QString> Choose(const QString &prompt, const QString &caption,
                                          const QStringList &items, int current) = 0;
    virtual void Beep() = 0;
};

// "File " + name + " already exists. Overwrite?" when `path` is a file;
// false when the user did not answer OK.
bool MayOverwrite(Prompts &prompts, const QString &name, const QString &path);

} // namespace kvr
