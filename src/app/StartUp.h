#pragma once
// The window-less part of start-up: lock, settings, migration, working folder.
#include "app/AppContext.h"

namespace kvr {

struct StartUpOptions {
    QString commandLineFile;  // empty when none was given
    // A link used for this run only (the simulated board); empty = none.
    QString sessionRemoteHost;
    QString sessionRemotePort;
};

enum class StartUpResult { Continue, AlreadyRunning };

// Runs the start-up steps up to the first window: lock question, settings
// read and migrated (calibrating the delay when still undetermined) and
// written, the working folder taken from the current file.
StartUpResult StartUp(AppContext &context, const StartUpOptions &options);

// The editor's tab spacing as the 16-bit integer it uses.
qint16 TabSpacesValue(const Settings &settings);

} // namespace kvr
