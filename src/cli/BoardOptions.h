#pragma once
// The options every `kvr` command that talks to a board shares, and the
// link they lead to. Each command adds its own options to the same parser.
#include "app/Settings.h"
#include "link/Transport.h"
#include <QCommandLineParser>
#include <QString>
#include <memory>
#include <optional>

namespace kvr {

// Exit status as the command line documents it.
enum ExitStatus { ExitFinished = 0, ExitFault = 1, ExitLink = 2, ExitUsage = 3, ExitHalted = 4 };

// The options every `kvr` command has; --type for those that take one.
struct CommandOptions {
    QCommandLineOption settingsDir{QStringLiteral("settings-dir"),
                                   QStringLiteral("Keep settings and lock file in DIR for this run."),
                                   QStringLiteral("DIR")};
    QCommandLineOption type{QStringLiteral("type"), QStringLiteral("Computer type: 4410ANS, 4410Fig or 6630Fig."),
                            QStringLiteral("T")};
    QCommandLineOption help{QStringList{QStringLiteral("h"), QStringLiteral("help")},
                            QStringLiteral("Print this help and exit.")};
};

struct BoardOptions : CommandOptions {
    QCommandLineOption port{QStringLiteral("port"), QStringLiteral("The board on serial port COMn."),
                            QStringLiteral("COMn")};
    QCommandLineOption remote{QStringLiteral("remote"),
                              QStringLiteral("The board behind a TCP gateway (port 4000 by default)."),
                              QStringLiteral("HOST[:PORT]")};
    QCommandLineOption quiet{QStringLiteral("quiet"), QStringLiteral("No beeps, replies collected without display.")};
    QCommandLineOption yes{QStringLiteral("yes"), QStringLiteral("Answer Yes to every question the run asks.")};

    // Adds these options to `parser`.
    explicit BoardOptions(QCommandLineParser &parser);

    // Applies type, port, remote and quiet to `settings`; false with
    // `problem` set on a bad value.
    bool Apply(const QCommandLineParser &parser, Settings &settings, QString &problem) const;
};

// The intercharacter delays still "-1" (a fresh settings folder), measured
// for this run without writing them.
void MeasureMissingDelays(Settings &settings);

// Opens the link the settings name; on failure `error` says why, naming the
// port or the address.
std::unique_ptr<Transport> OpenBoardLink(const Settings &settings, QString &error);

// Prints a usage problem and the command's help; returns ExitUsage.
int UsageError(const QString &command, const QString &problem, const QString &help);

// Parses the arguments of a command that takes one FILE into `parser` and
// sets `file`; an exit status instead when the run ends here (usage error
// or --help).
std::optional<int> ParseFileCommand(QCommandLineParser &parser, const QCommandLineOption &help, const QString &command,
                                    const QString &helpText, const QStringList &arguments, QString &file,
                                    const QString &what = QStringLiteral("FILE"));

} // namespace kvr
