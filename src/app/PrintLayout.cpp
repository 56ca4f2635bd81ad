#include "app/PrintLayout.h"
#include <QRegularExpression>
#include <algorithm>

namespace kvr {

QStringList PrintLines(const QString &text, int columns)
{
    columns = std::max(1, columns);
    static const QRegularExpression lineEnd(QStringLiteral("\r\n|\n|\r"));
    QStringList lines = text.split(lineEnd);
    // A final line end closes the last line; it does not open another.
    if (lines.size() > 1 && lines.last().isEmpty())
        lines.removeLast();
    QStringList printed;
    for (const QString &line : lines) {
        if (line.isEmpty())
            printed << line;
        for (qsizetype at = 0; at < line.size(); at += columns)
            printed << line.mid(at, columns);
    }
    return printed;
}

QList<QStringList> Paginate(const QStringList &lines, int firstCapacity, int nextCapacity)
{
    firstCapacity = std::max(1, firstCapacity);
    nextCapacity = std::max(1, nextCapacity);
    QList<QStringList> pages{QStringList()};
    int capacity = firstCapacity;
    for (const QString &line : lines) {
        // A form feed on a line of its own ends the page, as on a printer.
        if (line == QStringView(u"\f")) {
            if (!pages.last().isEmpty()) {
                pages << QStringList();
                capacity = nextCapacity;
            }
            continue;
        }
        if (pages.last().size() == capacity) {
            pages << QStringList();
            capacity = nextCapacity;
        }
        pages.last() << line;
    }
    return pages;
}

QString PageLabel(int page, int pages)
{
    return QStringLiteral("Page %1 of %2").arg(page).arg(pages);
}

} // namespace kvr
