#pragma once
// The terminal's screen buffer: a fixed number of rows of 400 characters,
// the cursor, and what the board's bytes do to them. Rows pushed off the top
// are kept as scroll-back the user can page through. No painting here; the
// window draws what this holds.
#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>

namespace kvr {

class ScreenModel {
public:
    static constexpr int LineLength = 400;
    static constexpr int DefaultRows = 100;
    static constexpr int DefaultScrollBack = 2000;

    explicit ScreenModel(int rows = DefaultRows, int scrollBack = DefaultScrollBack);

    // Applies the bytes in order with the terminal's control-code rules.
    // Returns the number of bells (code 7) met.
    int Feed(const QByteArray &bytes);
    // Every row back to blanks, cursor to the top left. The rows in use are
    // kept at the end of the scroll-back.
    void Clear();

    // Columns that fit the window; printing past them wraps to the next row.
    void SetVisibleColumns(int columns);
    int VisibleColumns() const { return m_visibleColumns; }

    int Rows() const { return m_rows.size(); }
    int Row() const { return m_row; }
    int Column() const { return m_column; }
    const QString &Line(int row) const { return m_rows.at(row); }
    // Row text without trailing blanks.
    QString Text(int row) const;
    // Rows from the top to the last row written, trimmed, joined with LF.
    QString ScreenText() const;

    const QList<QString> &ScrollBack() const { return m_scrollBack; }
    // The last row that holds anything or carries the cursor.
    int LastUsedRow() const;
    // Counts every change, so a view can tell whether to repaint.
    quint64 Generation() const { return m_generation; }

private:
    void NewLine();
    void PushToScrollBack(const QString &line);
    int WrapColumn() const;

    QList<QString> m_rows;
    QList<QString> m_scrollBack;
    int m_scrollBackLimit;
    int m_row = 0;
    int m_column = 0;
    int m_visibleColumns = 80;
    int m_maxRowUsed = 0;
    quint64 m_generation = 0;
};

} // namespace kvr
