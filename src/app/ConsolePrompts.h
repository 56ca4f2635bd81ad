#pragma once
// Prompts for the window-less program: messages become lines on stderr and
// questions take their default answer, or Yes/OK with `assumeYes`.
#include "app/Prompts.h"

namespace kvr {

class ConsolePrompts : public Prompts {
public:
    explicit ConsolePrompts(bool assumeYes = false) : m_assumeYes(assumeYes) {}

    PromptAnswer Message(const QString &text, PromptIcon icon, PromptButtons buttons,
                         const QString &caption) override;
    std::optional<QString> Input(const QString &prompt, const QString &caption,
                                 const QString &defaultText) override;
    QString OpenFileName(const QString &, const QString &, const QString &) override { return {}; }
    QString SaveFileName(const QString &, const QString &, const QString &) override { return {}; }
    std::optional<QColor> Color(const QColor &, const QString & = QString()) override { return std::nullopt; }
    std::optional<QFont> Font(const QFont &) override { return std::nullopt; }
    std::optional<QString> Choose(const QString &prompt, const QString &caption,
                                  const QStringList &items, int current) override;
    void Beep() override {}

private:
    bool m_assumeYes;
};

} // namespace kvr
