#include "app/ConsolePrompts.h"
#include <cstdio>

namespace kvr {

namespace {
void PrintLine(const QString &caption, const QString &text)
{
    QString flat = text;
    flat.replace(QLatin1Char('\n'), QLatin1Char(' '));
    std::fprintf(stderr, "%s: %s\n", qPrintable(caption), qPrintable(flat.simplified()));
}
} // namespace

PromptAnswer ConsolePrompts::Message(const QString &text, PromptIcon icon,
                                     PromptButtons buttons, const QString &caption)
{
    Q_UNUSED(icon);
    PrintLine(caption, text);
    if (m_assumeYes) {
        if (buttons == PromptButtons::YesNo || buttons == PromptButtons::YesNoCancel)
            return PromptAnswer::Yes;
        return PromptAnswer::Ok;
    }
    return DefaultAnswer(buttons);
}

std::optional<QString> ConsolePrompts::Input(const QString &prompt, const QString &caption,
                                             const QString &defaultText)
{
    PrintLine(caption, prompt);
    return defaultText;
}

std::optional<QString> ConsolePrompts::Choose(const QString &prompt, const QString &caption,
                                              const QStringList &items, int current)
{
    PrintLine(caption, prompt);
    if (current < 0 || current >= items.size())
        return std::nullopt;
    return items.at(current);
}

} // namespace kvr
