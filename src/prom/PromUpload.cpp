#include "prom/PromUpload.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include "compiler/CompileDriver.h"
#include "link/Link.h"
#include "link/TerminalHost.h"
#include "link/WaitGuard.h"
#include <QFile>
#include <algorithm>
#include <limits>

namespace kvr {

PromUpload::PromUpload(AppContext &context, Link &link, CompileDriver &driver, TerminalHost *terminal,
                       QObject *parent)
    : QObject(parent), m_context(context), m_link(link), m_driver(driver), m_terminal(terminal),
      m_collector(context, link)
{
    connect(&m_collector, &UploadCollector::AddressShown, this, [this](int address) {
        emit AddressShown(QString::number(address, 16).toUpper());
    });
    connect(&m_collector, &UploadCollector::ProgressText, this, &PromUpload::ProgressText);
}

void PromUpload::Stop()
{
    m_stopRequested = true;
    if (m_context.busyState == BusyState::Compiling)
        m_driver.HaltCompile();
    m_collector.Stop();
}

void PromUpload::AwaitReply()
{
    Clock &clock = m_context.clock;
    const double ms = std::clamp(Val(m_context.settings.timeout), 0.0, double(std::numeric_limits<qint32>::max()));
    const quint32 deadline = clock.TickCount() + static_cast<quint32>(ms);
    ReplyReceiver &receiver = m_driver.Engine().Receiver();
    const WaitGuard guard;
    while (!receiver.ReceiveLineShown() && !m_context.closing && m_link.Usable()) {
        const quint32 now = clock.TickCount();
        if (!TickBefore(now, deadline))
            break;
        m_link.ServeWhileWaiting(deadline - now);
    }
}

UploadOutcome PromUpload::Run(int start, int end, const QString &fileName, ImageFormat format)
{
    m_stopRequested = false;
    UploadOutcome outcome;
    const QString command = UploadCommand(start, end, format);
    outcome.fileName = WithImageExtension(fileName, format);
    if (outcome.fileName != fileName)
        emit FileNameChanged(outcome.fileName);

    const QString program = m_driver.FindProgramFile(BoardProgramName(format));
    if (program.isEmpty()) {
        outcome.end = UploadEnd::ProgramMissing;
        return outcome;
    }
    if (!m_link.Usable()) {
        m_link.NotResponding();
        outcome.end = UploadEnd::NoLink;
        return outcome;
    }

    emit ProgressShown(true);
    emit ProgressText(QStringLiteral("Compiling upload file"));
    // JOB marks where the upload program begins, so it can be forgotten.
    m_link.SendText(QStringLiteral(": JOB ; DIS"), true);
    AwaitReply();
    if (m_context.settings.computerType.left(4) == QLatin1String("4410")) {
        m_link.SendText(QStringLiteral("$FD12 $FD14 !"), true);
        AwaitReply();
    }
    QString path = program;
    m_driver.CompileFile(path);
    outcome.compileEnd = m_driver.State().runEnd;
    emit BringForward();

    // Written as it arrives: what came before a fault is kept.
    QFile file(ResolvePath(outcome.fileName));
    const bool opened = !m_stopRequested && file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    if (!opened && !m_stopRequested)
        m_context.prompts.Message(QStringLiteral("Error: ") + file.errorString() + QStringLiteral(": ")
                                      + outcome.fileName,
                                  PromptIcon::Critical);
    if (opened) {
        m_link.ClearInput();
        if (m_terminal)
            m_terminal->SetInputTimerEnabled(false);
        m_link.SendText(command, true);
        outcome.collect = m_collector.Collect(file, start);
        file.close();
    }

    m_link.SendText(ForgetLine(m_context.settings.computerType), true);

    if (m_terminal)
        m_terminal->SetInputTimerEnabled(true);
    emit ProgressShown(false);
    emit CompleteButtonShown();
    m_link.BeepUnlessQuiet();
    m_link.Pause(0.3);
    m_link.BeepUnlessQuiet();
    emit CompleteLabelShown();

    if (m_stopRequested || outcome.collect.stopped)
        outcome.end = UploadEnd::Halted;
    else if (!opened)
        outcome.end = UploadEnd::FileNotWritten;
    if (opened) {
        outcome.check = CheckImageFile(outcome.fileName, format, start, end - start);
        emit CheckShown(outcome.check.Summary(start));
    }
    return outcome;
}

} // namespace kvr
