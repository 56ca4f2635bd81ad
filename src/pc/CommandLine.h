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

PcCommandLine ParsePcCommandLine(const QStringList &arguments);
extern const char *PcUsage;

} // namespace kvr
