#include "app/ui/QtPrompts.h"
#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace kvr {

namespace {

QMessageBox::Icon ToQt(PromptIcon icon)
{
    switch (icon) {
    case PromptIcon::Information:
        return QMessageBox::Information;
    case PromptIcon::Exclamation:
        return QMessageBox::Warning;
    case PromptIcon::Critical:
        return QMessageBox::Critical;
    case PromptIcon::Question:
        return QMessageBox::Question;
    case PromptIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ToQt(PromptButtons buttons)
{
    switch (buttons) {
    case PromptButtons::Ok:
        return QMessageBox::Ok;
    case PromptButtons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case PromptButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case PromptButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case PromptButtons::RetryCancel:
        return QMessageBox::Retry | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

PromptAnswer FromQt(int button)
{
    switch (button) {
    case QMessageBox::Ok:
        return PromptAnswer::Ok;
    case QMessageBox::Yes:
        return PromptAnswer::Yes;
    case QMessageBox::No:
        return PromptAnswer::No;
    case QMessageBox::Retry:
        return PromptAnswer::Retry;
    default:
        return PromptAnswer::Cancel;
    }
}

QMessageBox::StandardButton DefaultButton(PromptButtons buttons)
{
    switch (DefaultAnswer(buttons)) {
    case PromptAnswer::Yes:
        return QMessageBox::Yes;
    case PromptAnswer::Retry:
        return QMessageBox::Retry;
    default:
        return QMessageBox::Ok;
    }
}

} // namespace

PromptAnswer QtPrompts::Message(const QString &text, PromptIcon icon, PromptButtons buttons,
                                const QString &caption)
{
    QMessageBox box(ToQt(icon), caption, text, ToQt(buttons), m_parent);
    box.setObjectName(QStringLiteral("KvrMessageBox"));
    box.setDefaultButton(DefaultButton(buttons));
    QApplication::restoreOverrideCursor(); // an hourglass must not hide a question
    return FromQt(box.exec());
}

std::optional<QString> QtPrompts::Input(const QString &prompt, const QString &caption,
                                        const QString &defaultText)
{
    bool ok = false;
    const QString text = QInputDialog::getText(m_parent, caption, prompt, QLineEdit::Normal,
                                               defaultText, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

QString QtPrompts::OpenFileName(const QString &caption, const QString &filter, const QString &folder)
{
    return QFileDialog::getOpenFileName(m_parent, caption, folder, filter);
}

QString QtPrompts::SaveFileName(const QString &caption, const QString &filter,
                                const QString &suggestedPath)
{
    // The program asks its own overwrite question where it wants one.
    return QFileDialog::getSaveFileName(m_parent, caption, suggestedPath, filter, nullptr,
                                        QFileDialog::DontConfirmOverwrite);
}

std::optional<QColor> QtPrompts::Color(const QColor &current, const QString &caption)
{
    const QColor chosen = QColorDialog::getColor(current, m_parent, caption);
    if (!chosen.isValid())
        return std::nullopt;
    return chosen;
}

std::optional<QFont> QtPrompts::Font(const QFont &current)
{
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, current, m_parent);
    if (!ok)
        return std::nullopt;
    return font;
}

std::optional<QString> QtPrompts::Choose(const QString &prompt, const QString &caption,
                                         const QStringList &items, int current)
{
    bool ok = false;
    const QString item = QInputDialog::getItem(m_parent, caption, prompt, items, current, false, &ok);
    if (!ok)
        return std::nullopt;
    return item;
}

void QtPrompts::Beep()
{
    QApplication::beep();
}

} // namespace kvr
