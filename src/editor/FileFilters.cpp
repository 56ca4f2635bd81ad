#include "editor/FileFilters.h"
#include <QStringList>

namespace kvr {

QString QtFilter(const QString &filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList rows;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i];
        const QString pattern = parts[i + 1] == QLatin1String("*.*") ? QStringLiteral("*")
                                                                       : parts[i + 1];
        // Qt reads the patterns from the last parentheses of a row.
        const qsizetype open = description.lastIndexOf(QLatin1Char('('));
        if (open > 0)
            description = description.left(open).trimmed();
        rows << description + QStringLiteral(" (") + pattern + QLatin1Char(')');
    }
    return rows.join(QStringLiteral(";;"));
}

} // namespace kvr
