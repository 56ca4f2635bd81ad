#pragma once
// Prompts for tests: records every box and answers from queues. A box with
// no queued answer takes its default button, a dialog with none is cancelled.
#include "app/Prompts.h"
#include <QList>
#include <QQueue>
#include <functional>

namespace kvr {

struct RecordedPrompt {
    QString kind; // "message", "input", "open", "save", "color", "font", "choose"
    QString caption;
    QString text;
    PromptIcon icon = PromptIcon::None;
    PromptButtons buttons = PromptButtons::Ok;
    QStringList items;
};

class ScriptedPrompts : public Prompts {
public:
    PromptAnswer Message(const QString &text, PromptIcon icon, PromptButtons buttons,
                         const QString &caption) override;
    std::optional<QString> Input(const QString &prompt, const QString &caption,
                                 const QString &defaultText) override;
    QString OpenFileName(const QString &caption, const QString &filter,
                         const QString &folder) override;
    QString SaveFileName(const QString &caption, const QString &filter,
                         const QString &suggestedPath) override;
    std::optional<QColor> Color(const QColor &current, const QString &caption = QString()) override;
    std::optional<QFont> Font(const QFont &current) override;
    std::optional<QString> Choose(const QString &prompt, const QString &caption,
                                  const QStringList &items, int current) override;
    void Beep() override { ++beeps; }

    QQueue<PromptAnswer> answers;
    QQueue<std::optional<QString>> inputs;   // Input and Choose
    QQueue<QString> fileNames;               // OpenFileName and SaveFileName
    QQueue<std::optional<QColor>> colors;
    QQueue<std::optional<QFont>> fonts;

    QList<RecordedPrompt> shown;
    int beeps = 0;
    // Called as a message box shows: what else the user sees at that moment.
    std::function<void(const QString &text)> onMessage;

    // Texts of the message boxes shown so far.
    QStringList MessageTexts() const;
    void Clear();
};

} // namespace kvr
