#pragma once
// What every subsystem shares for the whole run: the folders, the settings
// record, the prompts and the clock, plus the program-wide busy and outcome
// values that let compiling, database building and F2 coordinate.
#include "app/Clock.h"
#include "app/Paths.h"
#include "app/Prompts.h"
#include "app/Settings.h"
#include <QObject>
#include <optional>

namespace kvr {

enum class BusyState { Idle = 0, Compiling = 1, BuildingDatabase = 2 };
enum class CompileOutcome { Running = 0, Error = 1, NotResponding = 2, HaltRequested = 3 };

class AppContext : public QObject {
    Q_OBJECT
public:
    AppContext(const Paths &paths, Prompts &prompts, Clock &clock, QObject *parent = nullptr);

    Paths paths;
    Settings settings;
    Prompts &prompts;
    Clock &clock;
    BusyState busyState = BusyState::Idle;
    CompileOutcome compileOutcome = CompileOutcome::Running;
    // The program is ending (its frame was closed): every wait ends at once.
    bool closing = false;

    void ReadSettings();
    // Uses the board at host:port over TCP for this run only: the saved
    // link settings are written back unchanged unless the user changes the
    // link during the run.
    void SetSessionLink(const QString &host, const QString &port);
    // Writes the whole record; a failed write is reported once per run.
    void WriteSettings();

signals:
    void SettingsWritten();

private:
    bool m_writeFailureShown = false;
    struct SessionLink {
        QString commPort, remoteIp, remotePort;             // as saved
        QString sessionPort, sessionIp, sessionRemotePort;  // as used this run
    };
    std::optional<SessionLink> m_sessionLink;
};

} // namespace kvr
