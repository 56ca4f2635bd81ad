#include "compiler/ui/frmStatus.h"
#include "app/AppContext.h"
#include "compiler/CompileReport.h"
#include <QApplication>
#include <QDateTime>
#include <QKeyEvent>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPainter>
#include "app/ui/PagePrinter.h"
#include <QPrinter>
#include <QPrinterInfo>
#include <QScrollBar>

namespace kvr {

QRect ReportWindowGeometry(const QRect &current, const QSize &area, int needed)
{
    QRect r = current;
    const int widest = std::max(100, area.width() * 9 / 10);
    r.setWidth(std::clamp(std::max(needed, current.width()), 100, widest));
    if (r.right() >= area.width())
        r.moveLeft(std::max(0, area.width() - r.width()));
    if (r.left() < 0)
        r.moveLeft(0);
    return r;
}

frmStatus::frmStatus(AppContext &context, CompileReport &report, QWidget *parent)
    : QWidget(parent), m_context(context), m_report(report), m_menuBar(new QMenuBar(this)),
      m_list(new QListWidget(this))
{
    setObjectName(QStringLiteral("frmStatus"));
    setWindowTitle(QStringLiteral("Compilation report"));
    m_list->setObjectName(QStringLiteral("List1"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->installEventFilter(this);
    connect(m_list, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem *item) { emit ReportLineActivated(m_list->row(item)); });
    BuildMenus();

    connect(&m_report, &CompileReport::Cleared, this, [this] {
        m_list->clear();
        m_longest = 0;
    });
    connect(&m_report, &CompileReport::LineAdded, this, [this](const QString &text) {
        m_longest = std::max(m_longest, QFontMetrics(m_list->font()).horizontalAdvance(text));
        FitToLongestLine();
        m_list->addItem(text);
        m_list->setCurrentRow(m_list->count() - 1);
        m_list->scrollToBottom();
    });
    ApplyColors();
    resize(480, 200);
    for (const QString &line : m_report.Lines())
        m_list->addItem(line);
    m_report.ClearReport();
}

void frmStatus::BuildMenus()
{
    auto add = [this](QMenu *menu, const char *name, const QString &caption) {
        QAction *action = menu->addAction(caption);
        action->setObjectName(QString::fromLatin1(name));
        return action;
    };
    QMenu *file = m_menuBar->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("mnuPFile"));
    connect(add(file, "mnuPPrint", QStringLiteral("&Print report")), &QAction::triggered, this, &frmStatus::Print);
    connect(add(file, "mnuPShell", QStringLiteral("&DOS window")), &QAction::triggered, this,
            [this] { emit FrameCommand(QStringLiteral("mnuFShell")); });
    file->addSeparator();
    connect(add(file, "mnuPExit", QStringLiteral("E&xit")), &QAction::triggered, this,
            [this] { emit FrameCommand(QStringLiteral("mnuFExit")); });

    QMenu *options = m_menuBar->addMenu(QStringLiteral("&Options"));
    options->setObjectName(QStringLiteral("staOptions"));
    QMenu *colors = options->addMenu(QStringLiteral("&Colors"));
    colors->setObjectName(QStringLiteral("staOColors"));
    connect(add(colors, "staOCBackground", QStringLiteral("&Background")), &QAction::triggered, this,
            &frmStatus::ChooseBackgroundColor);
    connect(add(colors, "staOCText", QStringLiteral("&Text")), &QAction::triggered, this,
            &frmStatus::ChooseTextColor);

    QMenu *window = m_menuBar->addMenu(QStringLiteral("&Window"));
    window->setObjectName(QStringLiteral("mnuPWindow"));
    connect(add(window, "mnuWCascade", QStringLiteral("&Cascade")), &QAction::triggered, this,
            [this] { emit FrameCommand(QStringLiteral("mnuWCascade")); });
    connect(add(window, "mnuWArrangeIcons", QStringLiteral("&Arrange icons")), &QAction::triggered, this,
            [this] { emit FrameCommand(QStringLiteral("mnuWArrange")); });
}

QWidget *frmStatus::Host()
{
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget()))
        return sub;
    return this;
}

void frmStatus::ApplyColors()
{
    const QColor background = m_context.settings.Color(ColorWindow::StatusBox, false);
    const QColor foreground = m_context.settings.Color(ColorWindow::StatusBox, true);
    for (QWidget *w : {static_cast<QWidget *>(this), static_cast<QWidget *>(m_list)}) {
        QPalette p = w->palette();
        p.setColor(QPalette::Window, background);
        p.setColor(QPalette::Base, background);
        p.setColor(QPalette::WindowText, foreground);
        p.setColor(QPalette::Text, foreground);
        w->setPalette(p);
        w->setAutoFillBackground(true);
    }
}

void frmStatus::ChooseBackgroundColor()
{
    const std::optional<QColor> chosen = m_context.prompts.Color(m_list->palette().color(QPalette::Base),
                                                                    QStringLiteral("Report background color"));
    if (!chosen)
        return;
    m_context.settings.SetColor(ColorWindow::StatusBox, false, *chosen);
    ApplyColors();
    m_context.WriteSettings();
}

void frmStatus::ChooseTextColor()
{
    const std::optional<QColor> chosen = m_context.prompts.Color(m_list->palette().color(QPalette::Text),
                                                                    QStringLiteral("Report foreground color"));
    if (!chosen)
        return;
    m_context.settings.SetColor(ColorWindow::StatusBox, true, *chosen);
    ApplyColors();
    m_context.WriteSettings();
}

void frmStatus::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    LayoutList();
}

void frmStatus::LayoutList()
{
    const int top = m_menuBar->sizeHint().height();
    m_menuBar->setGeometry(0, 0, width(), top);
    // Only a window in its normal state gives the list its size.
    if (m_listPlaced && (Host()->windowState() & (Qt::WindowMinimized | Qt::WindowMaximized)))
        return;
    m_list->setGeometry(0, top, width(), std::max(0, height() - top));
    m_listPlaced = true;
}

void frmStatus::FitToLongestLine()
{
    auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget());
    if (!sub || !sub->mdiArea() || (sub->windowState() & (Qt::WindowMinimized | Qt::WindowMaximized)))
        return;
    const QFontMetrics metrics(m_list->font());
    const int chrome = sub->width() - m_list->viewport()->width() + metrics.averageCharWidth() * 2;
    sub->setGeometry(ReportWindowGeometry(sub->geometry(), sub->mdiArea()->viewport()->size(), m_longest + chrome));
}

bool frmStatus::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_F1) {
            emit HelpRequested(QStringLiteral("compilationreportwindow"));
            return true;
        }
        if (key->key() == Qt::Key_F2) {
            emit HaltRequested();
            return true;
        }
        if (key->key() == Qt::Key_Tab) {
            emit EditorRequested();
            return true;
        }
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && m_list->currentRow() >= 0) {
            emit ReportLineActivated(m_list->currentRow());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void frmStatus::Print()
{
    if (ReportEmpty())
        return;
    QPrinter printer(QPrinter::HighResolution);
    if (QPrinterInfo::availablePrinters().isEmpty()) {
        // No printer on this system: print to a PDF file instead.
        const QString file = m_context.prompts.SaveFileName(QStringLiteral("Print report to file"),
                                                           QStringLiteral("PDF files (*.pdf);;All files (*)"),
                                                           m_context.paths.ProgramFolder() + QStringLiteral("REPORT.PDF"));
        if (file.isEmpty())
            return;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
    }
    PrintReport(printer);
}

bool frmStatus::ReportEmpty()
{
    if (!m_report.Lines().isEmpty())
        return false;
    m_context.prompts.Message(QStringLiteral("Compilation report window is empty, use only after a compilation."),
                              PromptIcon::Information);
    return true;
}

bool frmStatus::PrintReport(QPrinter &printer)
{
    if (ReportEmpty())
        return false;
    PrintJob job;
    job.title = QStringLiteral("Compilation report  ")
                + QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
    job.text = m_report.Lines().join(QLatin1Char('\n'));
    job.font = QFont(QStringLiteral("Courier New"), 10);
    job.font.setStyleHint(QFont::TypeWriter);
    job.nextGap = 2;
    if (PrintPages(printer, job))
        return true;
    m_context.prompts.Message(QStringLiteral("Error: the printer could not be started."), PromptIcon::Exclamation);
    return false;
}

} // namespace kvr
