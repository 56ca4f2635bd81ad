#include "words/ui/frmWords.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include "app/ui/PagePrinter.h"
#include "editor/FileFilters.h"
#include "words/DatabaseBuilder.h"
#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>

namespace kvr {

namespace {

QPushButton *AddButton(QWidget *parent, QHBoxLayout *row, const char *name, const QString &text)
{
    auto *button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    row->addWidget(button);
    return button;
}

QLineEdit *AddReadOnlyLine(QWidget *parent, const char *name)
{
    auto *line = new QLineEdit(parent);
    line->setObjectName(QLatin1String(name));
    line->setReadOnly(true);
    return line;
}

} // namespace

frmWords::frmWords(AppContext &context, QWidget *parent)
    : QWidget(parent), m_context(context), m_now([] { return QDateTime::currentDateTime(); })
{
    setObjectName(QStringLiteral("frmWords"));
    setWindowTitle(QStringLiteral("Database of definitions"));
    m_print = [this](const PrintJob &job) {
        PrintWithDialog(job, m_context.prompts, m_context.paths.ProgramFolder() + QStringLiteral("WORDS.PDF"), this);
    };
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setFamilies({QStringLiteral("Courier New"), QStringLiteral("Courier"), fixed.family()});

    m_makingLabel = new QLabel(this);
    m_makingLabel->setObjectName(QStringLiteral("lblMaking"));
    m_makingLabel->setAlignment(Qt::AlignCenter);
    m_makingLabel->setWordWrap(true);
    m_wait = new QLabel(QStringLiteral("Please wait ..."), this);
    m_wait->setObjectName(QStringLiteral("lblWait"));
    m_wait->setAlignment(Qt::AlignCenter);
    m_wait->hide();
    m_stop = new QPushButton(QStringLiteral("Stop"), this);
    m_stop->setObjectName(QStringLiteral("cmdESC"));
    connect(m_stop, &QPushButton::clicked, this, [this] {
        m_stop->hide();
        emit StopRequested();
    });

    m_filter = new QLineEdit(this);
    m_filter->setObjectName(QStringLiteral("txtFilter"));
    m_filter->setPlaceholderText(QStringLiteral("Filter"));
    m_filter->setClearButtonEnabled(true);
    connect(m_filter, &QLineEdit::textChanged, this, &frmWords::FillList);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("lstWords"));
    m_list->setFont(fixed);
    m_list->setUniformItemSizes(true);
    connect(m_list, &QListWidget::currentRowChanged, this, &frmWords::ShowRecord);
    connect(m_list, &QListWidget::itemActivated, this, &frmWords::ActivateWord);
    // Down from the filter goes on into the list.
    auto *down = new QShortcut(QKeySequence(Qt::Key_Down), m_filter);
    down->setContext(Qt::WidgetShortcut);
    connect(down, &QShortcut::activated, m_list, qOverload<>(&QWidget::setFocus));

    m_definition = new QPlainTextEdit(this);
    m_definition->setObjectName(QStringLiteral("txtWords"));
    m_definition->setReadOnly(true);
    m_definition->setFont(fixed);
    m_definition->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_file = AddReadOnlyLine(this, "txtFile");
    m_references = AddReadOnlyLine(this, "txtReferences");
    m_usedByLabel = new QLabel(QStringLiteral("Used by"), this);
    m_usedByLabel->setObjectName(QStringLiteral("lblUsedBy"));
    m_usedBy = new QListWidget(this);
    m_usedBy->setObjectName(QStringLiteral("lstUsedBy"));
    m_usedBy->setMaximumHeight(110);
    connect(m_usedBy, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { ActivateUse(m_usedBy->row(item)); });

    auto *row = new QHBoxLayout;
    m_printButton = AddButton(this, row, "cmdPrint", QStringLiteral("Print"));
    m_fileIt = AddButton(this, row, "cmdFileIt", QStringLiteral("File it"));
    m_suggest = AddButton(this, row, "cmdSuggest", QStringLiteral("Suggest"));
    m_printSuggestions = AddButton(this, row, "CmdPrintSug", QStringLiteral("Print"));
    m_ok = AddButton(this, row, "CmdOK", QStringLiteral("OK"));
    connect(m_printButton, &QPushButton::clicked, this, &frmWords::PrintReport);
    connect(m_fileIt, &QPushButton::clicked, this, &frmWords::FileReport);
    connect(m_suggest, &QPushButton::clicked, this, &frmWords::ShowSuggestions);
    connect(m_printSuggestions, &QPushButton::clicked, this, &frmWords::PrintSuggestions);
    connect(m_ok, &QPushButton::clicked, this, &frmWords::Ok);

    // Escape presses Stop while a build runs (hence its name cmdESC), OK after.
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    escape->setContext(Qt::WidgetWithChildrenShortcut);
    connect(escape, &QShortcut::activated, this, [this] {
        QPushButton *button = Making() ? m_stop : m_ok;
        if (!button->isHidden())
            button->click();
    });

    m_grid = new QGridLayout(this);
    m_grid->addWidget(m_makingLabel, 0, 0, 1, 2);
    m_grid->addWidget(m_wait, 1, 0, 1, 2);
    m_grid->addWidget(m_filter, 2, 0);
    m_grid->addWidget(m_list, 3, 0, 5, 1);
    m_grid->addWidget(m_definition, 2, 1, 2, 1);
    m_grid->addWidget(m_file, 4, 1);
    m_grid->addWidget(m_references, 5, 1);
    m_grid->addWidget(m_usedByLabel, 6, 1);
    m_grid->addWidget(m_usedBy, 7, 1);
    m_grid->addLayout(row, 8, 0, 1, 2);
    m_grid->addWidget(m_stop, 9, 0, 1, 2, Qt::AlignCenter);
    m_grid->setColumnStretch(1, 1);
    m_grid->setRowStretch(3, 1);
    resize(640, 440);
    SetListVisible(false);
}

QString frmWords::CaptionFor(const QString &databasePath)
{
    return QStringLiteral("Database of definitions in ")
           + ShortenPath(DatabaseBuilder::DerivedPath(databasePath, QStringLiteral(".KVR")));
}

void frmWords::SetListVisible(bool visible)
{
    for (QWidget *widget : std::initializer_list<QWidget *>{m_filter, m_list, m_definition, m_file, m_references,
                                                            m_usedByLabel, m_usedBy, m_printButton, m_fileIt, m_suggest,
                                                            m_ok})
        widget->setVisible(visible);
    // The report view has its own Print.
    m_printSuggestions->hide();
}

void frmWords::ShowMaking(const QString &text)
{
    if (m_view == View::Report)
        LeaveReportView();
    // The build replaces the database file under us.
    m_browser.Close();
    m_view = View::Making;
    SetListVisible(false);
    m_makingLabel->setText(text);
    m_makingLabel->show();
    m_stop->show();
}

void frmWords::SetMakingText(const QString &text)
{
    m_makingLabel->setText(text);
}

bool frmWords::ShowList(const QString &databasePath)
{
    if (m_view == View::Report)
        LeaveReportView();
    m_view = View::List;
    m_makingLabel->hide();
    m_stop->hide();
    setWindowTitle(CaptionFor(databasePath));
    const bool read = m_browser.Load(databasePath);
    QFont font = m_list->font();
    const int size = std::max(1, int(Val(m_context.settings.fontSize)));
    font.setPointSize(size);
    m_list->setFont(font);
    // Hiding Stop left the focus on the frame around us: hand it to the list
    // so keys reach the window, but take it from no other window.
    const QWidget *focus = QApplication::focusWidget();
    const bool focusHere = !focus || focus == this || isAncestorOf(focus) || focus->isAncestorOf(this);
    SetListVisible(true);
    m_filter->blockSignals(true);
    m_filter->clear();
    m_filter->blockSignals(false);
    FillList();
    if (focusHere)
        m_list->setFocus();
    return read;
}

void frmWords::FillList()
{
    const QList<const WordRecord *> &records = m_browser.Records();
    const int height = ListRowHeight(m_list->font().pointSize(), logicalDpiY());
    m_list->setUpdatesEnabled(false);
    m_list->clear();
    for (int row : m_browser.Filter(m_filter->text())) {
        auto *item = new QListWidgetItem(WordsBrowser::ListEntry(*records[row]));
        item->setSizeHint(QSize(0, height));
        m_list->addItem(item);
    }
    m_list->setUpdatesEnabled(true);
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
    else
        ShowRecord(-1);
}

void frmWords::SelectWord(const QString &word)
{
    m_filter->clear();
    const int row = m_browser.Seek(QLatin1Char(' ') + word);
    if (row >= 0)
        m_list->setCurrentRow(row);
}

void frmWords::FocusList()
{
    m_list->setFocus();
}

void frmWords::ShowRecord(int listRow)
{
    m_usedBy->clear();
    const int row = listRow >= 0 && listRow < m_list->count() ? m_browser.Seek(m_list->item(listRow)->text()) : -1;
    m_shown = row >= 0 ? m_browser.Records()[row] : nullptr;
    if (!m_shown) {
        m_definition->clear();
        m_file->clear();
        m_references->clear();
        return;
    }
    m_definition->setPlainText(m_shown->definition);
    m_file->setText(WordsBrowser::FileText(*m_shown));
    m_references->setText(WordsBrowser::ReferencesText(*m_shown));
    m_usedBy->addItems(WordsBrowser::UsedBy(*m_shown));
}

void frmWords::ActivateWord()
{
    if (m_shown && m_shown->IsUserWord() && !m_shown->path.isEmpty() && m_shown->line > 0)
        emit OpenDefinition(m_shown->path, m_shown->line);
    else
        m_context.prompts.Beep();
}

void frmWords::ActivateUse(int row)
{
    if (m_shown && row >= 0 && row < m_shown->sites.size())
        emit OpenDefinition(m_shown->sites[row].file, m_shown->sites[row].line);
}

bool frmWords::WriteReport(const QString &path)
{
    // The report is written behind "Please wait ...".
    SetListVisible(false);
    m_wait->show();
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    const QString error = WriteTextLines(path, m_browser.Report(m_now()));
    QApplication::restoreOverrideCursor();
    m_wait->hide();
    SetListVisible(true);
    if (!error.isEmpty())
        m_context.prompts.Message(QStringLiteral("Error: ") + error, PromptIcon::Exclamation);
    return error.isEmpty();
}

void frmWords::Print(const QStringList &lines)
{
    PrintJob job;
    job.title = windowTitle();
    job.text = lines.join(QLatin1Char('\n'));
    job.font = QFont(QStringLiteral("Courier New"), 10);
    job.font.setStyleHint(QFont::TypeWriter);
    m_print(job);
}

void frmWords::PrintReport()
{
    if (!m_browser.IsOpen())
        return;
    const QString name = WithTrailingSeparator(QFileInfo(m_browser.DatabasePath()).path()) + QStringLiteral("PRINT.TXT");
    const QString path = ResolvePath(name);
    if (!MayOverwrite(m_context.prompts, name, path) || !WriteReport(path))
        return;
    Print(ReadTextLines(path));
    QFile::remove(path);
}

void frmWords::FileReport()
{
    if (!m_browser.IsOpen())
        return;
    const QString chosen = m_context.prompts.SaveFileName(
        QStringLiteral("Save report as file"), QtFilter(QStringLiteral("Text files (*.txt)|*.txt|All files (*.*)|*.*")),
        ResolvePath(DatabaseBuilder::DerivedPath(m_browser.DatabasePath(), QStringLiteral(".TXT"))));
    if (chosen.isEmpty() || !MayOverwrite(m_context.prompts, LogicalName(chosen), chosen))
        return;
    WriteReport(chosen);
}

void frmWords::ShowSuggestions()
{
    if (!m_browser.IsOpen())
        return;
    const QString path = ResolvePath(m_browser.SuggestionsPath());
    if (!QFileInfo(path).isFile()) {
        const QChar lf(10);
        m_context.prompts.Message(
            QStringLiteral("There is no suggestions file. Without one you cannot do this operation.  ")
                + QStringLiteral("Continue by choosing 'OK'. ") + lf + lf
                + QStringLiteral("To make a suggestions file you need to create the database again:") + lf
                + QStringLiteral("1. Select a source code window") + lf
                + QStringLiteral("2. Select from the menu 'Database' then 'Make Database'") + lf
                + QStringLiteral("3. Reply 'OK' then 'YES' to the subsequent questions."),
            PromptIcon::Information);
        return;
    }
    const QString source = ShortenPath(m_browser.SourcePath());
    const QStringList lines = ReadTextLines(path);
    if (lines.isEmpty()) {
        m_context.prompts.Message(QStringLiteral("No suggestions for improvement of \r\n") + source
                                      + QStringLiteral(" have been found"),
                                  PromptIcon::Information);
        ShowList(m_browser.DatabasePath());
        return;
    }
    m_view = View::Report;
    SetListVisible(false);
    m_makingLabel->setText(QStringLiteral("Report on source file ") + source);
    m_makingLabel->show();
    m_printSuggestions->show();
    m_ok->show();
    // Out of the layout: the report view places the text box itself.
    m_grid->removeWidget(m_definition);
    m_definition->setGeometry(ReportTextGeometry(size()));
    m_definition->show();
    QString text;
    for (const QString &line : lines) {
        if (text.size() + line.size() + 2 > ReportViewCapacity) {
            m_context.prompts.Message(QStringLiteral("The information is too much to fit in the window, ")
                                          + QStringLiteral("please print by selecting 'Print' to see it all"),
                                      PromptIcon::Critical);
            break;
        }
        text += line + QStringLiteral("\r\n");
    }
    m_definition->setPlainText(text);
}

void frmWords::PrintSuggestions()
{
    Print(ReadTextLines(ResolvePath(m_browser.SuggestionsPath())));
}

void frmWords::LeaveReportView()
{
    m_grid->addWidget(m_definition, 2, 1, 2, 1);
    m_view = View::List;
}

void frmWords::Ok()
{
    if (m_view == View::Report) {
        ShowList(m_browser.DatabasePath());
        return;
    }
    CloseDatabase();
    if (parentWidget())
        parentWidget()->close();
    else
        close();
}

void frmWords::CloseDatabase()
{
    if (Making())
        return;
    if (m_view == View::Report)
        LeaveReportView();
    m_browser.Close();
    m_list->clear();
}

void frmWords::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_view == View::Report)
        m_definition->setGeometry(ReportTextGeometry(size()));
}

} // namespace kvr
