#pragma once
// The texts made from a words database: the closing sections of the
// suggestions report and the alphanumeric report of definitions.
#include "words/WordTable.h"
#include <QDateTime>
#include <QStringList>

namespace kvr {

// A user word as the lists of the closing sections show it.
struct ListedUserWord {
    QString word;
    QString file;
};

// One pass over the records in index order.
struct WordStatistics {
    int romUsed = 0;
    int userUsed = 0;
    int romUnused = 0;
    int userUnused = 0;
    QList<ListedUserWord> unreferenced; // user words never referenced
    QList<ListedUserWord> usedOnce;     // user words referenced once
    QStringList files;                      // files of used user words, at most 100

    static WordStatistics Of(const QList<const WordRecord *> &records);
};

// The closing sections, for the main source file `sourcePath`.
QStringList ClosingSections(const WordStatistics &statistics, const QString &sourcePath);

// The alphanumeric report of definitions: heading, every record but the
// unreferenced ones of the template, then a form feed and the suggestions
// report `suggestions` when there is one.
QStringList AlphanumericReport(const QList<const WordRecord *> &records, const QString &sourcePath,
                               const QDateTime &when, const QStringList &suggestions);

} // namespace kvr
