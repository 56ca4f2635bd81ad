#include "help/ExternalTools.h"
#include <QProcess>

namespace kvr {

QStringList TerminalCommandLine(const QString &configured, const QString &environmentTerminal,
                                const std::function<QString(const QString &)> &findExecutable)
{
    for (const QString &candidate : {configured, environmentTerminal, QStringLiteral("x-terminal-emulator")}) {
        QStringList parts = QProcess::splitCommand(candidate);
        if (parts.isEmpty())
            continue;
        const QString program = findExecutable(parts.first());
        if (program.isEmpty())
            continue;
        parts[0] = program;
        return parts;
    }
    return {};
}

QStringList ProgrammerCommandLine(const QString &command, const QString &file, const QString &device)
{
    QStringList parts = QProcess::splitCommand(command);
    for (QString &part : parts)
        part.replace(FilePlaceholder, file).replace(DevicePlaceholder, device);
    return parts;
}

QString ShownCommandLine(const QStringList &commandLine)
{
    QStringList shown;
    for (const QString &part : commandLine)
        shown << (part.isEmpty() || part.contains(QLatin1Char(' ')) ? QLatin1Char('"') + part + QLatin1Char('"')
                                                                    : part);
    return shown.join(QLatin1Char(' '));
}

QString AboutText(const AboutFacts &facts)
{
    const QString lf(QChar(10));
    QString text = QStringLiteral("KVR-PC version ") + facts.version + lf
                   + QStringLiteral("Built ") + facts.buildDate + QStringLiteral(" with Qt ") + facts.qtVersion + lf
                   + QStringLiteral("Running on Qt ") + QString::fromLatin1(qVersion()) + lf + lf
                   + QStringLiteral("Development environment for the KVR4410, KVR4410F and KVR6630 Forth computers.")
                   + lf + lf;
    text += facts.boardVersion.isEmpty()
                ? QStringLiteral("Simulated board: not installed")
                : QStringLiteral("Simulated board: ") + facts.boardVersion;
    text += lf + lf + QStringLiteral("Licence: see the Licence page of the help.");
    return text;
}

} // namespace kvr
