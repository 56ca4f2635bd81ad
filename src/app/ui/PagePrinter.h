#pragma once
// Prints lines of text on a printer or into a PDF: the heading (title at
// the left, page number at the right) in bold at the top of every page.
#include <QFont>
#include <QString>
#include <QStringList>
#include <functional>

class QPrinter;
class QWidget;

namespace kvr {

class Prompts;

struct PrintJob {
    QString title;
    QString text;      // printed as it stands, long lines continued
    QFont font;
    int firstGap = 1;  // empty lines under the heading of page 1
    int nextGap = 1;   // ... and of every further page
};

// False when the printer could not be started.
bool PrintPages(QPrinter &printer, const PrintJob &job);

// Print (the printer dialog; a PDF file when the system has no printer)
// and Print Preview, for a window's menu.
void PrintWithDialog(const PrintJob &job, Prompts &prompts, const QString &pdfSuggestion, QWidget *parent);
void PreviewPrint(const PrintJob &job, QWidget *parent);

} // namespace kvr
