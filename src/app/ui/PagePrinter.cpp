#include "app/ui/PagePrinter.h"
#include "app/PrintLayout.h"
#include "app/Prompts.h"
#include <QApplication>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <algorithm>

namespace kvr {

bool PrintPages(QPrinter &printer, const PrintJob &job)
{
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    QFont body = job.font;
    // Screen-sized point sizes read well on paper; pixel sizes would not.
    if (body.pointSize() <= 0)
        body.setPointSize(10);
    QFont bold = body;
    bold.setBold(true);
    painter.setFont(body);
    const QFontMetrics metrics = painter.fontMetrics();
    const int lineHeight = metrics.lineSpacing();
    const QRect page = painter.viewport();
    const int linesPerPage = std::max(4, page.height() / lineHeight);
    const int columns = std::max(20, page.width() / std::max(1, metrics.horizontalAdvance(QLatin1Char('M'))));
    const QList<QStringList> pages = Paginate(PrintLines(job.text, columns), linesPerPage - 1 - job.firstGap,
                                              linesPerPage - 1 - job.nextGap);
    for (int n = 0; n < pages.size(); ++n) {
        if (n > 0)
            printer.newPage();
        painter.setFont(bold);
        const int ascent = painter.fontMetrics().ascent();
        painter.drawText(0, ascent, job.title);
        const QString label = PageLabel(n + 1, static_cast<int>(pages.size()));
        painter.drawText(page.width() - painter.fontMetrics().horizontalAdvance(label), ascent, label);
        painter.setFont(body);
        int y = lineHeight * (1 + (n == 0 ? job.firstGap : job.nextGap));
        for (const QString &line : pages[n]) {
            painter.drawText(0, y + metrics.ascent(), line);
            y += lineHeight;
        }
    }
    painter.end();
    QApplication::restoreOverrideCursor();
    return true;
}

void PrintWithDialog(const PrintJob &job, Prompts &prompts, const QString &pdfSuggestion, QWidget *parent)
{
    QPrinter printer(QPrinter::HighResolution);
    if (QPrinterInfo::availablePrinters().isEmpty()) {
        // No printer on this system: print to a PDF file instead.
        const QString file = prompts.SaveFileName(QStringLiteral("Print to file"),
                                                  QStringLiteral("PDF files (*.pdf);;All files (*)"), pdfSuggestion);
        if (file.isEmpty())
            return;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
    } else {
        QPrintDialog dialog(&printer, parent);
        if (dialog.exec() != QDialog::Accepted)
            return;
    }
    if (!PrintPages(printer, job))
        prompts.Message(QStringLiteral("Error: the printer could not be started."), PromptIcon::Exclamation);
}

void PreviewPrint(const PrintJob &job, QWidget *parent)
{
    QPrinter printer(QPrinter::HighResolution);
    QPrintPreviewDialog preview(&printer, parent);
    preview.setObjectName(QStringLiteral("frmPrintPreview"));
    QObject::connect(&preview, &QPrintPreviewDialog::paintRequested, &preview,
                     [&job](QPrinter *target) { PrintPages(*target, job); });
    preview.exec();
}

} // namespace kvr
