#include "link/Terminal.h"
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

namespace kvr {

const QString Terminal::InterruptSequence = QString::fromLatin1("\x03\x11\x1b ;");

Terminal::Terminal(AppContext &context, Link &link, QObject *parent)
    : QObject(parent), m_context(context), m_link(link)
{
}

Terminal::~Terminal()
{
    m_capture.close();
}

void Terminal::Tick()
{
    if (++m_ticks >= BlinkTicks) {
        m_ticks = 0;
        m_blink = !m_blink;
        emit CursorBlinked();
    }
    if (m_serialErrorTicks > 0 && --m_serialErrorTicks == 0)
        emit IndicatorsChanged();
    ShowReceived();
}

void Terminal::ShowReceived()
{
    // Not while a reply is awaited (it is the waiter's), and never nested
    // through the yields below.
    if (m_inShowReceived || m_link.IsWaiting())
        return;
    m_inShowReceived = true;
    // A board that never stops talking must not keep the program inside
    // this loop (it could not even quit): what is left waits for the next tick.
    QElapsedTimer spent;
    spent.start();
    while (m_inputTimerEnabled && !m_link.IsWaiting() && spent.elapsed() < ShowBudgetMs
           && m_link.BytesAvailable() >= 1) {
        ShowBytes(m_link.ReadBytes());
        QCoreApplication::processEvents();
    }
    m_inShowReceived = false;
}

void Terminal::ShowBytes(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    if (m_capture.isOpen()) {
        m_capture.write(bytes);
        m_capture.flush();
    }
    for (qsizetype start = 0; start < bytes.size(); start += YieldEvery) {
        if (start > 0)
            QCoreApplication::processEvents();
        const int bells = m_screen.Feed(bytes.mid(start, YieldEvery));
        for (int i = 0; i < bells; ++i)
            m_link.BeepUnlessQuiet();
        emit ScreenChanged();
    }
}

void Terminal::ClearScreen()
{
    m_screen.Clear();
    emit ScreenChanged();
}

void Terminal::KeyTyped(const QString &text)
{
    for (QChar c : text) {
        if (c.unicode() == 9)
            continue;
        // The Caps Lock option works on the letters this window sends; the
        // keyboard's own lock state is left to the desktop.
        if (CapsLockOn() && c.unicode() < 128)
            c = c.toUpper();
        m_link.SendText(QString(c), false);
    }
}

bool Terminal::KeyDown(int qtKey, bool shift)
{
    switch (qtKey) {
    case Qt::Key_F1:
        emit HelpRequested();
        return true;
    case Qt::Key_F2:
        m_context.compileOutcome = CompileOutcome::HaltRequested;
        SendInterrupt();
        return true;
    case Qt::Key_Tab:
        if (!shift)
            emit FocusEditorRequested();
        return true;
    case Qt::Key_Backtab:
        return true;
    default:
        return false;
    }
}

void Terminal::SendInterrupt()
{
    m_link.SendText(InterruptSequence, true);
    m_link.WaitForReply();
    m_link.SendText(QString(QChar(13)), false);
    m_link.WaitForReply();
}

void Terminal::Zap()
{
    m_link.SendText(QStringLiteral("COLD"), true);
}

void Terminal::ToggleCapture()
{
    Prompts &prompts = m_context.prompts;
    if (!m_capture.isOpen()) {
        const QString path = prompts.SaveFileName(QStringLiteral("Capture to file"),
                                                  QStringLiteral("Capture files (*.cap);;All files (*.*)"),
                                                  QDir::current().filePath(QStringLiteral("TEMP.CAP")));
        if (path.isEmpty())
            return;
        m_capture.setFileName(path);
        if (!m_capture.open(QIODevice::WriteOnly | QIODevice::Append)) {
            prompts.Message(path + QStringLiteral("Can't open file "), PromptIcon::Exclamation);
            return;
        }
        prompts.Message(QStringLiteral("Now capturing input and appending it to end of file ") + path,
                        PromptIcon::Information);
        m_context.settings.captureToDisk = path;
        m_context.WriteSettings();
        emit IndicatorsChanged();
        return;
    }
    const QString path = m_capture.fileName();
    m_capture.close();
    emit IndicatorsChanged();
    const PromptAnswer answer = prompts.Message(QStringLiteral("Stopped capturing to file ") + path
                                                    + QStringLiteral(".\nDo you want to display it?"),
                                                PromptIcon::Question, PromptButtons::YesNo);
    if (answer == PromptAnswer::Yes)
        emit OpenInEditor(path);
}

void Terminal::ToggleCapsLock()
{
    Settings &s = m_context.settings;
    s.capsLock = CapsLockOn() ? QStringLiteral("OFF") : QStringLiteral("ON");
    m_context.WriteSettings();
}

void Terminal::ShowSerialError()
{
    m_serialErrorTicks = SerialErrorTicks;
    emit IndicatorsChanged();
}

void Terminal::SetInputTimerEnabled(bool enabled)
{
    if (m_inputTimerEnabled == enabled)
        return;
    m_inputTimerEnabled = enabled;
    emit InputTimerChanged(enabled);
}

void Terminal::SetProgressVisible(bool visible)
{
    m_progressVisible = visible;
    // The labels take the window's current colours as they appear.
    if (visible)
        emit ColorsChanged();
    emit IndicatorsChanged();
}

void Terminal::SetProgressText(const QString &text)
{
    m_progressText = text;
    emit IndicatorsChanged();
}

} // namespace kvr
