#pragma once
// One PROM upload: compiles the board's upload program, starts it with the
// address range, collects the records it sends into the image file, takes
// the program off the board again, and checks what was written.
#include "compiler/CompileState.h"
#include "prom/ImageCheck.h"
#include "prom/PromFormat.h"
#include "prom/UploadCollector.h"
#include <QObject>

namespace kvr {

class AppContext;
class CompileDriver;
class Link;
class TerminalHost;

enum class UploadEnd {
    Done,            // the loop ran; see the check for what arrived
    NoLink,          // nothing could be sent
    ProgramMissing,  // PROGMOT.KVR or PROGINT.KVR not found
    FileNotWritten,  // the image file could not be opened
    Halted,          // stopped on request
};

struct UploadOutcome {
    UploadEnd end = UploadEnd::Done;
    QString fileName;                 // as used, with its extension
    RunEnd compileEnd = RunEnd::None; // the upload program's compile
    CollectResult collect;
    ImageCheck check;
};

class PromUpload : public QObject {
    Q_OBJECT
public:
    PromUpload(AppContext &context, Link &link, CompileDriver &driver, TerminalHost *terminal,
               QObject *parent = nullptr);

    UploadOutcome Run(int start, int end, const QString &fileName, ImageFormat format);
    // Ctrl-C or closing: halts the compile or ends the collection; the
    // program is still taken off the board.
    void Stop();

signals:
    // The name with the extension the format gave it.
    void FileNameChanged(const QString &name);
    // lblProgress, txtProgress and lblWait shown or hidden together.
    void ProgressShown(bool shown);
    void ProgressText(const QString &text);
    void AddressShown(const QString &hexAddress);
    void CompleteButtonShown();
    void CompleteLabelShown();
    void BringForward();
    void CheckShown(const QString &summary);

private:
    // Waits up to the time-out for one reply line, shown on the terminal.
    void AwaitReply();

    AppContext &m_context;
    Link &m_link;
    CompileDriver &m_driver;
    TerminalHost *m_terminal;
    UploadCollector m_collector;
    bool m_stopRequested = false;
};

} // namespace kvr
