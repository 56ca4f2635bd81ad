#include "editor/ui/ForthHighlighter.h"
#include <QRegularExpression>
#include <QSet>

namespace kvr {

namespace {

enum BlockState { Plain = 0, InParenComment = 1 };

QColor Mix(const QColor &a, const QColor &b, double t)
{
    return QColor::fromRgbF(a.redF() * (1 - t) + b.redF() * t, a.greenF() * (1 - t) + b.greenF() * t,
                            a.blueF() * (1 - t) + b.blueF() * t);
}

const QSet<QString> &Definers()
{
    static const QSet<QString> words{
        QStringLiteral(":"),         QStringLiteral("CONSTANT"),  QStringLiteral("VARIABLE"),
        QStringLiteral("CREATE"),    QStringLiteral("VALUE"),     QStringLiteral("2CONSTANT"),
        QStringLiteral("2VARIABLE"), QStringLiteral("CODE"),      QStringLiteral("DEFER"),
        QStringLiteral("USER"),      QStringLiteral("FVARIABLE"), QStringLiteral("FCONSTANT")};
    return words;
}

const QSet<QString> &Directives()
{
    static const QSet<QString> words{
        QStringLiteral("INCLUDE"), QStringLiteral("QUICK"),  QStringLiteral("#CONDITION"),
        QStringLiteral("#IF"),     QStringLiteral("#ELSE"),  QStringLiteral("#ENDIF"),
        QStringLiteral("#IFDEF"),  QStringLiteral("#IFNDEF")};
    return words;
}

bool IsNumber(const QString &word)
{
    static const QRegularExpression number(
        QStringLiteral("^(-?[0-9]+\\.?|\\$[0-9A-Fa-f]+|%[01]+|-?[0-9]*\\.[0-9]+(E-?[0-9]+)?)$"));
    return number.match(word).hasMatch();
}

} // namespace

ForthHighlighter::ForthHighlighter(QTextDocument *document) : QSyntaxHighlighter(document)
{
    SetBaseColors(QColor(255, 255, 0), QColor(0, 0, 0));
}

void ForthHighlighter::SetBaseColors(const QColor &background, const QColor &foreground)
{
    const bool light = background.lightness() >= 128;
    m_comment.setForeground(Mix(foreground, background, 0.45));
    m_comment.setFontItalic(true);
    m_string.setForeground(light ? QColor(0xa0, 0x10, 0x10) : QColor(0xff, 0xa0, 0x80));
    m_definer.setForeground(foreground);
    m_definer.setFontWeight(QFont::Bold);
    m_name.setForeground(light ? QColor(0x10, 0x20, 0xa0) : QColor(0x90, 0xc8, 0xff));
    m_name.setFontWeight(QFont::Bold);
    m_number.setForeground(light ? QColor(0x80, 0x00, 0x80) : QColor(0xff, 0x90, 0xff));
    m_directive.setForeground(light ? QColor(0x00, 0x60, 0x00) : QColor(0x90, 0xff, 0x90));
    rehighlight();
}

void ForthHighlighter::highlightBlock(const QString &text)
{
    const int n = static_cast<int>(text.size());
    int i = 0;
    setCurrentBlockState(Plain);
    if (previousBlockState() == InParenComment) {
        const int close = static_cast<int>(text.indexOf(QLatin1Char(')')));
        const int end = close < 0 ? n : close + 1;
        setFormat(0, end, m_comment);
        if (close < 0) {
            setCurrentBlockState(InParenComment);
            return;
        }
        i = end;
    }
    bool nameNext = false;
    while (i < n) {
        while (i < n && text[i].isSpace())
            ++i;
        if (i >= n)
            break;
        int end = i;
        while (end < n && !text[end].isSpace())
            ++end;
        const QString word = text.mid(i, end - i).toUpper();
        if (nameNext) {
            setFormat(i, end - i, m_name);
            nameNext = false;
        } else if (word == QLatin1String("\\")) {
            setFormat(i, n - i, m_comment);
            return;
        } else if (word == QLatin1String("(") || word == QLatin1String(".(")) {
            const int close = static_cast<int>(text.indexOf(QLatin1Char(')'), end));
            const int stop = close < 0 ? n : close + 1;
            setFormat(i, stop - i, word == QLatin1String("(") ? m_comment : m_string);
            if (close < 0 && word == QLatin1String("(")) {
                setCurrentBlockState(InParenComment);
                return;
            }
            end = stop;
        } else if (word.endsWith(QLatin1Char('"')) && word.size() <= 6) {
            const int close = static_cast<int>(text.indexOf(QLatin1Char('"'), end + 1));
            const int stop = close < 0 ? n : close + 1;
            setFormat(i, stop - i, m_string);
            end = stop;
        } else if (Definers().contains(word)) {
            setFormat(i, end - i, m_definer);
            nameNext = true;
        } else if (word == QLatin1String(";") || word == QLatin1String(":NONAME")) {
            setFormat(i, end - i, m_definer);
        } else if (Directives().contains(word)) {
            setFormat(i, end - i, m_directive);
        } else if (IsNumber(word)) {
            setFormat(i, end - i, m_number);
        }
        i = end;
    }
}

} // namespace kvr
