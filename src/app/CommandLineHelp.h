#pragma once
// Help text of a command-line parser under the program's own name rather
// than the path it was started by, so help and manual pages read the same.
// Header-only: the simulated board uses it without the application library.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QString>

namespace kvr {

inline QString HelpText(const QCommandLineParser &parser, const QString &programName)
{
    QString text = parser.helpText();
    const QStringList arguments = QCoreApplication::arguments();
    const QString started = arguments.isEmpty() ? QString() : arguments.first();
    const QString usage = QStringLiteral("Usage: ");
    if (!started.isEmpty() && text.startsWith(usage + started))
        text.replace(usage.size(), started.size(), programName);
    return text;
}

} // namespace kvr
