#pragma once
// The folders the program works with. `WindowsFolder` holds the settings and
// lock files; the program folder holds SELECTED.KVR, the templates and the
// board-side programs, seeded from the installation's data on first start.
#include <QString>

namespace kvr {

class Paths {
public:
    // `settingsDir` empty: the per-user configuration and data folders.
    // Otherwise the settings and the program folder live below
    // `settingsDir`, so several set-ups and portable installs can coexist;
    // the KVR folder stays the one in the user's home.
    explicit Paths(const QString &settingsDir = QString());

    QString WindowsFolder() const { return m_windows; }   // trailing '/'
    QString ProgramFolder() const { return m_program; }   // trailing '/'
    QString KvrHomeFolder() const { return m_kvrHome; }   // trailing '/'
    QString InstallDataFolder() const;                     // trailing '/'
    // Where the files made at build time are: the installation's data
    // folder, or in a build tree the build's own.
    QString GeneratedDataFolder() const;                   // trailing '/'
    QString ExamplesFolder() const;                        // trailing '/'

    QString SettingsFile() const;
    QString LockFile() const;

    // Creates the folders and copies the shipped board programs and
    // templates from `dataFolder` into the program folder where missing.
    void Prepare(const QString &dataFolder) const;
    // From the installation's data, and in a build tree from what the
    // build made too.
    void Prepare() const;

private:
    QString m_windows;
    QString m_program;
    QString m_kvrHome;
};

} // namespace kvr
