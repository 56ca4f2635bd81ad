#include "app/Prompts.h"

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

} // namespace kvr
