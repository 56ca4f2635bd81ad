#include "link/Terminal.h"
#include "app/Text.h"
#include "link/WaitGuard.h"
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <algorithm>

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

void Terminal::SendTyped(const QString &text)
{
    // Nothing can go out: a beep says so, once per key.
    if (!text.isEmpty() && !m_link.Usable()) {
        m_link.BeepUnlessQuiet();
        return;
    }
    for (QChar c : text) {
        m_link.SendText(QString(c), false);
        m_history.Sent(c);
    }
}

void Terminal::KeyTyped(const QString &text)
{
    QString sent;
    for (QChar c : text)
        if (c.unicode() != 9)
            sent.append(c);
    SendTyped(sent);
}

bool Terminal::KeyDown(int qtKey, bool shift)
{
    switch (qtKey) {
    case Qt::Key_F1:
        emit HelpRequested();
        return true;
    case Qt::Key_F2:
        m_context.compileOutcome = CompileOutcome::HaltRequested;
        m_pasteHalted = true;
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

bool Terminal::KeyPressed(int qtKey, Qt::KeyboardModifiers modifiers, const QString &text)
{
    const bool shift = modifiers & Qt::ShiftModifier;
    const bool control = modifiers & Qt::ControlModifier;
    const bool otherChord = modifiers & (Qt::AltModifier | Qt::MetaModifier);
    if (m_pasting) {
        // Only F2 reaches a board that is taking a paste.
        if (qtKey == Qt::Key_F2)
            KeyDown(qtKey, shift);
        return true;
    }
    if (KeyDown(qtKey, shift))
        return true;
    if ((qtKey == Qt::Key_Up || qtKey == Qt::Key_Down) && !(control || otherChord)) {
        SendTyped(m_history.Recall(qtKey == Qt::Key_Up));
        return true;
    }
    if (qtKey == Qt::Key_Space && control && !otherChord && m_complete) {
        const QString rest = m_complete(m_history.Current());
        if (rest.isEmpty())
            m_link.BeepUnlessQuiet();
        else
            SendTyped(rest);
        return true;
    }
    if (control && !otherChord) {
        const int code = ControlCode(qtKey);
        if (code >= 0) {
            SendTyped(QString(QChar(code)));
            return true;
        }
    }
    if (m_capsEmulated && CapsLockOn() && !control && !otherChord) {
        const QChar letter = CapsLockLetter(qtKey, shift);
        if (!letter.isNull()) {
            SendTyped(QString(letter));
            return true;
        }
    }
    if (text.isEmpty())
        return false;
    KeyTyped(text);
    return true;
}

void Terminal::Paste(const QString &text)
{
    if (m_pasting || text.isEmpty())
        return;
    QString normal = text;
    normal.replace(QStringLiteral("\r\n"), QStringLiteral("\r"));
    normal.replace(QLatin1Char('\n'), QLatin1Char('\r'));
    normal.replace(QLatin1Char('\t'), QLatin1Char(' '));
    const QStringList lines = normal.split(QLatin1Char('\r'));
    m_pasting = true;
    m_pasteHalted = false;
    const bool timerWasOn = m_inputTimerEnabled;
    SetInputTimerEnabled(false);
    for (int i = 0; i < lines.size() && !m_pasteHalted; ++i) {
        SendTyped(lines.at(i));
        if (i + 1 < lines.size()) {
            SendTyped(QString(QChar(13)));
            if (!AwaitPastedLine())
                break;
        }
    }
    SetInputTimerEnabled(timerWasOn);
    m_pasting = false;
}

bool Terminal::AwaitPastedLine()
{
    const quint32 deadline = m_context.clock.TickCount()
        + static_cast<quint32>(std::clamp(Val(m_context.settings.timeout), 0.0, 3.6e6));
    const WaitGuard guard;
    while (TickBefore(m_context.clock.TickCount(), deadline)) {
        if (m_link.BytesAvailable() > 0) {
            const QByteArray bytes = m_link.ReadBytes();
            ShowBytes(bytes);
            if (bytes.contains('\n'))
                return true;
        }
        if (!m_link.Usable())
            return false;
        m_link.ServeWhileWaiting(20);
        if (m_pasteHalted)
            return false;
    }
    m_link.NotResponding();
    return false;
}

QString Terminal::TextBetween(int fromLine, int fromColumn, int toLine, int toColumn) const
{
    if (std::make_pair(toLine, toColumn) < std::make_pair(fromLine, fromColumn)) {
        std::swap(fromLine, toLine);
        std::swap(fromColumn, toColumn);
    }
    const QList<QString> &history = m_screen.ScrollBack();
    const int historySize = int(history.size());
    QStringList lines;
    for (int line = std::max(0, fromLine); line <= toLine; ++line) {
        QString text;
        if (line < historySize)
            text = history.at(line);
        else if (line - historySize < m_screen.Rows())
            text = m_screen.Line(line - historySize);
        else
            break;
        const int start = line == fromLine ? fromColumn : 0;
        const int end = line == toLine ? toColumn : int(text.size());
        QString part = text.mid(start, std::max(0, end - start));
        while (part.endsWith(QLatin1Char(' ')))
            part.chop(1);
        lines.append(part);
    }
    return lines.join(QLatin1Char('\n'));
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
            // The path first, then the system's reason, readable on their own lines.
            prompts.Message(path + QChar(10) + QStringLiteral("Can't open file ") + QStringLiteral("(")
                                + m_capture.errorString() + QStringLiteral(")"),
                            PromptIcon::Exclamation);
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
    emit CapsLockChanged(CapsLockOn());
}

void Terminal::SetLinkState(const QString &reason)
{
    if (reason == m_linkDown)
        return;
    const QString note = reason.isEmpty() ? QStringLiteral("[link back]")
                                          : QStringLiteral("[link down: %1]").arg(reason);
    m_linkDown = reason;
    if (reason.isEmpty())
        m_serialErrorTicks = 0;
    // On the screen only: a capture holds what the board sent.
    m_screen.Feed(((m_screen.Column() > 0 ? QStringLiteral("\r\n") : QString()) + note + QStringLiteral("\r\n")).toLatin1());
    emit ScreenChanged();
    emit IndicatorsChanged();
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
