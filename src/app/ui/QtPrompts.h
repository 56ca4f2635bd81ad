#pragma once
// Prompts shown as real dialogs.
#include "app/Prompts.h"

class QWidget;

namespace kvr {

class QtPrompts : public Prompts {
public:
    // Dialogs are centred on the frame.
    void SetParent(QWidget *parent) { m_parent = parent; }

    PromptAnswer Message(const QString &text, PromptIcon icon, PromptButtons buttons,
                         const QString &caption) override;
    std::optional<QString> Input(const QString &prompt, const QString &caption,
                                 const QString &defaultText) override;
    QString OpenFileName(const QString &caption, const QString &filter, const QString &folder) override;
    QString SaveFileName(const QString &caption, const QString &filter,
                         const QString &suggestedPath) override;
    std::optional<QColor> Color(const QColor &current, const QString &caption = QString()) override;
    std::optional<QFont> Font(const QFont &current) override;
    std::optional<QString> Choose(const QString &prompt, const QString &caption,
                                  const QStringList &items, int current) override;
    void Beep() override;

private:
    QWidget *m_parent = nullptr;
};

} // namespace kvr
