#pragma once
// The outside programs the environment starts: the desktop's terminal, a
// PROM programmer's command line, and the facts the About box shows.
#include <QString>
#include <QStringList>
#include <functional>

namespace kvr {

// Program and arguments of the terminal to start, chosen from the command
// configured in the settings, then $TERMINAL, then x-terminal-emulator;
// `findExecutable` resolves a program name to a path (empty when absent).
// Empty when none is found.
QStringList TerminalCommandLine(const QString &configured, const QString &environmentTerminal,
                                const std::function<QString(const QString &)> &findExecutable);

inline const QString FilePlaceholder = QStringLiteral("{file}");
inline const QString DevicePlaceholder = QStringLiteral("{device}");

// The programmer's command line split into program and arguments, then
// {file} and {device} filled in each argument, so a path with blanks stays
// one argument. Empty when the command is empty.
QStringList ProgrammerCommandLine(const QString &command, const QString &file, const QString &device);
// The command line as the user confirms it, arguments with blanks quoted.
QString ShownCommandLine(const QStringList &commandLine);

struct AboutFacts {
    QString version;
    QString buildDate;
    QString qtVersion;
    QString boardVersion; // empty when the simulated board is not installed
};
QString AboutText(const AboutFacts &facts);

} // namespace kvr
