#pragma once
// Collects the record lines the board's upload program sends and writes
// them to the image file as received: the echo up to "RECORD" dropped,
// leading blanks removed, 16 added to the shown address per line, Ctrl-Z
// ending, and `Timeout` milliseconds allowed between lines.
#include <QElapsedTimer>
#include <QObject>

class QIODevice;

namespace kvr {

class AppContext;
class Link;

struct CollectResult {
    int lines = 0;            // lines written
    bool endSeen = false;     // Ctrl-Z came
    bool stopped = false;     // asked to stop (Ctrl-C, program closing)
    qint64 received = 0;      // bytes taken from the link
    qint64 elapsedNs = 0;     // from the start to the last byte taken
};

class UploadCollector : public QObject {
    Q_OBJECT
public:
    UploadCollector(AppContext &context, Link &link, QObject *parent = nullptr)
        : QObject(parent), m_context(context), m_link(link) {}

    // Runs the loop, starting the shown address at `start`.
    CollectResult Collect(QIODevice &file, int start);
    // Ends the loop at its next turn.
    void Stop() { m_stopRequested = true; }

signals:
    void AddressShown(int address);
    void ProgressText(const QString &text);

private:
    AppContext &m_context;
    Link &m_link;
    bool m_stopRequested = false;
};

} // namespace kvr
