#pragma once
// The windowed program's command line.
#include <QString>
#include <QStringList>

namespace kvr {

struct PcCommandLine {
    QString settingsDir;
    QString simulatorHost;   // from --simulator HOST:PORT
    QString simulatorPort;
    QString file;            // the source file to open
    bool showVersion = false;
    bool showHelp = false;
    QString error;           // non-empty: bad usage
};

// `arguments` without the program's name; needs no application object.
PcCommandLine ParsePcCommandLine(const QStringList &arguments);
// The usage text (an application object must exist).
QString PcHelpText();

} // namespace kvr
