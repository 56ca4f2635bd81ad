#pragma once
// Download of a PROM image to an outside programmer: the image is checked
// first, then the programmer's command line runs with its output passed on
// as it arrives, until it ends or is cancelled.
#include "prom/ImageCheck.h"
#include <QObject>
#include <QProcess>

namespace kvr {

struct ProgrammerImage {
    ImageCheck check;
    int start = 0;  // address of the first data record
    QString Summary() const { return check.Summary(start); }
};

// The format from the extension (.MOT, .INT; otherwise from the first
// record), the range from the records themselves.
ProgrammerImage CheckProgrammerImage(const QString &path);

class ProgrammerDownload : public QObject {
    Q_OBJECT
public:
    explicit ProgrammerDownload(QObject *parent = nullptr);
    ~ProgrammerDownload() override;

    // False (with Ended) when nothing could be started.
    bool Start(const QStringList &commandLine);
    void Cancel();
    bool IsRunning() const;

signals:
    void Output(const QString &text);
    // `ok`: the programmer exited with status 0; `verdict` says how it ended.
    void Ended(bool ok, const QString &verdict);

private:
    QProcess *m_process = nullptr;
    bool m_cancelled = false;
};

} // namespace kvr
