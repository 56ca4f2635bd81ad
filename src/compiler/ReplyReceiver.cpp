#include "compiler/ReplyReceiver.h"
#include "app/Text.h"
#include "link/Link.h"
#include "link/TerminalHost.h"

namespace kvr {

bool ReplyReceiver::ReceiveLineShown()
{
    if (m_link.BytesAvailable() < 1)
        return false;
    QByteArray bytes = m_link.ReadBytes();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = static_cast<char>(bytes[i] & 0x7F);
        bytes[i] = c;
        if (c == 10) {
            if (m_terminal)
                m_terminal->ShowBytes(bytes.left(i + 1));
            m_state.replyLine = RTrim(m_state.shownLine);
            m_state.shownLine.clear();
            return true;
        }
        if (static_cast<unsigned char>(c) >= 32 && m_state.shownLine.size() < ReplyLineLimit)
            m_state.shownLine += QLatin1Char(c);
    }
    if (m_terminal)
        m_terminal->ShowBytes(bytes);
    return false;
}

bool ReplyReceiver::ReceiveLineQuiet()
{
    if (m_link.BytesAvailable() < 1)
        return false;
    const QByteArray bytes = m_link.ReadBytes();
    if (m_state.quietLineBuffer.size() != QuietLineLength)
        m_state.ResetQuietLineBuffer();
    for (const char raw : bytes) {
        const char c = static_cast<char>(raw & 0x7F);
        if (c == 10) {
            m_state.replyLine = RTrim(m_state.quietLineBuffer);
            m_state.ResetQuietLineBuffer();
            ProgressStep();
            return true;
        }
        if (static_cast<unsigned char>(c) >= 32) {
            m_state.quietLineBuffer[m_state.quietFill] = QLatin1Char(c);
            if (m_state.quietFill < QuietLineLength - 1)
                ++m_state.quietFill;
        }
    }
    return false;
}

void ReplyReceiver::ProgressStep()
{
    if (!m_terminal)
        return;
    const QString block(1, QChar(127));
    const QString caption = m_terminal->ProgressText();
    if (caption.size() < m_state.progressCapacity)
        m_terminal->SetProgressText(caption + block);
    else
        m_terminal->SetProgressText(block);
}

} // namespace kvr
