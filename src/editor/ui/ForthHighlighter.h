#pragma once
// Forth colouring over the configured editor colours: comments, strings,
// defining words with the names they define, numbers and the PC-side
// directives. The colours are derived from the window's own background and
// foreground so a user's colour choice stays the base.
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

namespace kvr {

class ForthHighlighter : public QSyntaxHighlighter {
    Q_OBJECT
public:
    explicit ForthHighlighter(QTextDocument *document);
    void SetBaseColors(const QColor &background, const QColor &foreground);

protected:
    void highlightBlock(const QString &text) override;

private:
    QTextCharFormat m_comment;
    QTextCharFormat m_string;
    QTextCharFormat m_definer;
    QTextCharFormat m_name;
    QTextCharFormat m_number;
    QTextCharFormat m_directive;
};

} // namespace kvr
