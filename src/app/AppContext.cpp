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

void AppContext::SetSessionLink(const QString &host, const QString &port)
{
    m_sessionLink = SessionLink{settings.commPort, settings.remoteIp, settings.remotePort,
                                QStringLiteral("COM0"), host, port};
    settings.commPort = QStringLiteral("COM0");
    settings.remoteIp = host;
    settings.remotePort = port;
}

void AppContext::WriteSettings()
{
    Settings toWrite = settings;
    if (m_sessionLink) {
        const SessionLink &l = *m_sessionLink;
        if (settings.commPort == l.sessionPort && settings.remoteIp == l.sessionIp
            && settings.remotePort == l.sessionRemotePort) {
            toWrite.commPort = l.commPort;
            toWrite.remoteIp = l.remoteIp;
            toWrite.remotePort = l.remotePort;
        } else {
            m_sessionLink.reset(); // the user chose a link of their own
        }
    }
    if (!kvr::WriteSettings(toWrite, paths.SettingsFile()) && !m_writeFailureShown) {
        m_writeFailureShown = true;
        prompts.Message(QStringLiteral("Error: the settings file ") + paths.SettingsFile()
                            + QStringLiteral(" could not be written."),
                        PromptIcon::Exclamation);
    }
    emit SettingsWritten();
}

} // namespace kvr
