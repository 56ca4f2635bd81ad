#include "app/Prompts.h"

#include <QFileInfo>

namespace kvr {

PromptAnswer DefaultAnswer(PromptButtons buttons)
{
    switch (buttons) {
    case PromptButtons::Ok:
    case PromptButtons::OkCancel:
        return PromptAnswer::Ok;
    case PromptButtons::YesNo:
    case PromptButtons::YesNoCancel:
        return PromptAnswer::Yes;
    case PromptButtons::RetryCancel:
        return PromptAnswer::Retry;
    }
    return PromptAnswer::Ok;
}

bool MayOverwrite(Prompts &prompts, const QString &name, const QString &path)
{
    return !QFileInfo(path).isFile()
           || prompts.Message(QStringLiteral("File ") + name + QStringLiteral(" already exists. Overwrite?"),
                              PromptIcon::Exclamation, PromptButtons::OkCancel)
                  == PromptAnswer::Ok;
}

} // namespace kvr
