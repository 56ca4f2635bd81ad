#include "app/ScriptedPrompts.h"

namespace kvr {

PromptAnswer ScriptedPrompts::Message(const QString &text, PromptIcon icon,
                                      PromptButtons buttons, const QString &caption)
{
    shown.append({QStringLiteral("message"), caption, text, icon, buttons, {}});
    if (onMessage)
        onMessage(text);
    return answers.isEmpty() ? DefaultAnswer(buttons) : answers.dequeue();
}

std::optional<QString> ScriptedPrompts::Input(const QString &prompt, const QString &caption,
                                              const QString &defaultText)
{
    shown.append({QStringLiteral("input"), caption, prompt, PromptIcon::None,
                  PromptButtons::OkCancel, {defaultText}});
    return inputs.isEmpty() ? std::nullopt : inputs.dequeue();
}

QString ScriptedPrompts::OpenFileName(const QString &caption, const QString &filter,
                                      const QString &folder)
{
    shown.append({QStringLiteral("open"), caption, filter, PromptIcon::None,
                  PromptButtons::OkCancel, {folder}});
    return fileNames.isEmpty() ? QString() : fileNames.dequeue();
}

QString ScriptedPrompts::SaveFileName(const QString &caption, const QString &filter,
                                      const QString &suggestedPath)
{
    shown.append({QStringLiteral("save"), caption, filter, PromptIcon::None,
                  PromptButtons::OkCancel, {suggestedPath}});
    return fileNames.isEmpty() ? QString() : fileNames.dequeue();
}

std::optional<QColor> ScriptedPrompts::Color(const QColor &current, const QString &caption)
{
    shown.append({QStringLiteral("color"), caption, current.name(), PromptIcon::None,
                  PromptButtons::OkCancel, {}});
    return colors.isEmpty() ? std::nullopt : colors.dequeue();
}

std::optional<QFont> ScriptedPrompts::Font(const QFont &current)
{
    shown.append({QStringLiteral("font"), {}, current.family(), PromptIcon::None,
                  PromptButtons::OkCancel, {}});
    return fonts.isEmpty() ? std::nullopt : fonts.dequeue();
}

std::optional<QString> ScriptedPrompts::Choose(const QString &prompt, const QString &caption,
                                               const QStringList &items, int current)
{
    shown.append({QStringLiteral("choose"), caption, prompt, PromptIcon::None,
                  PromptButtons::OkCancel, items});
    Q_UNUSED(current);
    return inputs.isEmpty() ? std::nullopt : inputs.dequeue();
}

QStringList ScriptedPrompts::MessageTexts() const
{
    QStringList texts;
    for (const auto &p : shown)
        if (p.kind == QLatin1String("message"))
            texts << p.text;
    return texts;
}

void ScriptedPrompts::Clear()
{
    shown.clear();
    beeps = 0;
}

} // namespace kvr
