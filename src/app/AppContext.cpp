#include "app/AppContext.h"

namespace kvr {

AppContext::AppContext(const Paths &paths_, Prompts &prompts_, Clock &clock_, QObject *parent)
    : QObject(parent), paths(paths_), prompts(prompts_), clock(clock_)
{
}

void AppContext::ReadSettings()
{
    kvr::ReadSettings(settings, paths.SettingsFile(), paths.WindowsFolder());
}

void AppContext::WriteSettings()
{
    if (!kvr::WriteSettings(settings, paths.SettingsFile()) && !m_writeFailureShown) {
        m_writeFailureShown = true;
        prompts.Message(QStringLiteral("Error: the settings file ") + paths.SettingsFile()
                            + QStringLiteral(" could not be written."),
                        PromptIcon::Exclamation);
    }
    emit SettingsWritten();
}

} // namespace kvr
