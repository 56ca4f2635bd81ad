#include "link/ScreenModel.h"
#include <algorithm>

namespace kvr {

namespace {
const QString BlankLine(ScreenModel::LineLength, QLatin1Char(' '));
}

ScreenModel::ScreenModel(int rows, int scrollBack) : m_scrollBackLimit(std::max(0, scrollBack))
{
    m_rows.fill(BlankLine, std::max(1, rows));
}

void ScreenModel::SetVisibleColumns(int columns)
{
    m_visibleColumns = std::max(1, columns);
}

int ScreenModel::WrapColumn() const
{
    return std::min(m_visibleColumns, LineLength);
}

void ScreenModel::PushToScrollBack(const QString &line)
{
    if (m_scrollBackLimit == 0)
        return;
    if (m_scrollBack.size() >= m_scrollBackLimit)
        m_scrollBack.removeFirst();
    m_scrollBack.append(line);
}

void ScreenModel::NewLine()
{
    m_column = 0;
    if (m_row + 1 < m_rows.size()) {
        ++m_row;
    } else {
        // Past the last row: everything moves up one row.
        PushToScrollBack(m_rows.takeFirst());
        m_rows.append(BlankLine);
    }
    m_maxRowUsed = std::max(m_maxRowUsed, m_row);
}

int ScreenModel::Feed(const QByteArray &bytes)
{
    int bells = 0;
    for (char byte : bytes) {
        const uchar code = static_cast<uchar>(byte);
        if (code >= 32) {
            if (m_column >= WrapColumn())
                NewLine();
            if (m_column < LineLength) {
                m_rows[m_row][m_column] = QChar(code);
                ++m_column;
            }
            continue;
        }
        switch (code) {
        case 7:
            ++bells;
            break;
        case 8:
            if (m_column > 0) {
                --m_column;
                QString &line = m_rows[m_row];
                std::fill(line.begin() + m_column, line.end(), QLatin1Char(' '));
            }
            break;
        case 10:
        case 11:
            NewLine();
            break;
        case 12:
            Clear();
            break;
        case 13:
            m_column = 0;
            break;
        case 28:
            if (m_column >= WrapColumn())
                NewLine();
            m_column = std::min(m_column + 1, int(LineLength));
            break;
        case 30:
            m_row = m_row == 0 ? m_rows.size() - 1 : m_row - 1;
            m_maxRowUsed = std::max(m_maxRowUsed, m_row);
            break;
        default:
            break; // other control codes are ignored
        }
    }
    ++m_generation;
    return bells;
}

void ScreenModel::Clear()
{
    const int used = LastUsedRow();
    bool any = false;
    for (int r = 0; r <= used; ++r)
        any = any || m_rows.at(r) != BlankLine;
    if (any)
        for (int r = 0; r <= used; ++r)
            PushToScrollBack(m_rows.at(r));
    for (QString &line : m_rows)
        line = BlankLine;
    m_row = 0;
    m_column = 0;
    m_maxRowUsed = 0;
    ++m_generation;
}

int ScreenModel::LastUsedRow() const
{
    return std::max(m_maxRowUsed, m_row);
}

QString ScreenModel::Text(int row) const
{
    const QString &line = m_rows.at(row);
    qsizetype end = line.size();
    while (end > 0 && line.at(end - 1) == QLatin1Char(' '))
        --end;
    return line.left(end);
}

QString ScreenModel::ScreenText() const
{
    QStringList lines;
    const int last = LastUsedRow();
    for (int r = 0; r <= last; ++r)
        lines << Text(r);
    return lines.join(QLatin1Char('\n'));
}

} // namespace kvr
