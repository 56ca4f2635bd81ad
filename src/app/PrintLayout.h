#pragma once
// How printed text falls onto pages: lines cut to the paper's width and
// split into pages under a heading with the page number.
#include <QList>
#include <QString>
#include <QStringList>

namespace kvr {

// The text's lines (CR LF, LF or CR ends), each longer than `columns`
// characters continued on further lines.
QStringList PrintLines(const QString &text, int columns);

// `lines` split into pages of `firstCapacity` lines, then `nextCapacity`
// each (both at least 1); an empty list still makes one empty page. A line
// holding only a form feed ends its page and is not printed.
QList<QStringList> Paginate(const QStringList &lines, int firstCapacity, int nextCapacity);

// "Page 2 of 5".
QString PageLabel(int page, int pages);

} // namespace kvr
