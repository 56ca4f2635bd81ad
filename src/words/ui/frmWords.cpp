#include "words/ui/frmWords.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include "words/WordsDatabase.h"
#include <QApplication>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace kvr {

namespace {
// The notation entries of the templates: their uses are not counted.
bool IsNotationEntry(const QString &word)
{
    static const QStringList entries{QStringLiteral("^x"),   QStringLiteral("("),    QStringLiteral("\\"),
                                     QStringLiteral("$xxxx"), QStringLiteral("Rx"),   QStringLiteral("@Rx"),
                                     QStringLiteral("@-Rx"), QStringLiteral("@Rx+"), QStringLiteral("x\"")};
    return entries.contains(word);
}
} // namespace

frmWords::frmWords(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("frmWords"));
    setWindowTitle(QStringLiteral("Database of definitions"));
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setFamilies({QStringLiteral("Courier New"), QStringLiteral("Courier"), fixed.family()});

    m_makingLabel = new QLabel(this);
    m_makingLabel->setObjectName(QStringLiteral("lblMaking"));
    m_makingLabel->setAlignment(Qt::AlignCenter);
    m_makingLabel->setWordWrap(true);
    m_wait = new QLabel(QStringLiteral("Please wait ..."), this);
    m_wait->setObjectName(QStringLiteral("lblWait"));
    m_wait->hide();
    m_stop = new QPushButton(QStringLiteral("Stop"), this);
    m_stop->setObjectName(QStringLiteral("cmdESC"));
    connect(m_stop, &QPushButton::clicked, this, [this] {
        m_stop->hide();
        emit StopRequested();
    });

    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("lstWords"));
    m_list->setFont(fixed);
    m_definition = new QPlainTextEdit(this);
    m_definition->setObjectName(QStringLiteral("txtWords"));
    m_definition->setReadOnly(true);
    m_definition->setFont(fixed);
    m_file = new QLineEdit(this);
    m_file->setObjectName(QStringLiteral("txtFile"));
    m_file->setReadOnly(true);
    m_references = new QLineEdit(this);
    m_references->setObjectName(QStringLiteral("txtReferences"));
    m_references->setReadOnly(true);
    connect(m_list, &QListWidget::currentRowChanged, this, &frmWords::ShowRecord);

    const QList<QPair<QString, QString>> buttons{{QStringLiteral("cmdPrint"), QStringLiteral("Print")},
                                                 {QStringLiteral("cmdFileIt"), QStringLiteral("File it")},
                                                 {QStringLiteral("cmdSuggest"), QStringLiteral("Suggest")},
                                                 {QStringLiteral("CmdPrintSug"), QStringLiteral("Print")},
                                                 {QStringLiteral("CmdOK"), QStringLiteral("OK")}};
    auto *row = new QHBoxLayout;
    for (const auto &[name, text] : buttons) {
        auto *button = new QPushButton(text, this);
        button->setObjectName(name);
        m_buttons.append(button);
        row->addWidget(button);
    }
    // The report view that shows the suggestions has its own Print.
    m_buttons[3]->hide();
    connect(m_buttons[4], &QPushButton::clicked, this, [this] {
        if (parentWidget())
            parentWidget()->close();
        else
            close();
    });

    // Escape presses Stop while a build runs (hence its name cmdESC), OK after.
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    escape->setContext(Qt::WidgetWithChildrenShortcut);
    connect(escape, &QShortcut::activated, this, [this] {
        QPushButton *button = m_isMaking ? m_stop : m_buttons[4];
        if (!button->isHidden())
            button->click();
    });

    auto *grid = new QGridLayout(this);
    grid->addWidget(m_makingLabel, 0, 0, 1, 2);
    grid->addWidget(m_wait, 1, 0, 1, 2);
    grid->addWidget(m_list, 2, 0, 3, 1);
    grid->addWidget(m_definition, 2, 1);
    grid->addWidget(m_file, 3, 1);
    grid->addWidget(m_references, 4, 1);
    grid->addLayout(row, 5, 0, 1, 2);
    grid->addWidget(m_stop, 6, 0, 1, 2, Qt::AlignCenter);
    grid->setColumnStretch(1, 1);
    resize(620, 420);
    SetListVisible(false);
}

QString frmWords::CaptionFor(const QString &databasePath)
{
    return QStringLiteral("Database of definitions in ")
           + ShortenPath(databasePath.left(databasePath.size() - 4) + QStringLiteral(".KVR"));
}

QString frmWords::ListEntry(const WordRecord &record)
{
    QString entry = QLatin1Char(' ') + record.word.left(11).leftJustified(11, QLatin1Char(' '));
    if (record.IsUserWord())
        entry += record.references ? QChar(QLatin1Char('|')) : QChar(31);
    return entry;
}

void frmWords::SetListVisible(bool visible)
{
    m_list->setVisible(visible);
    m_definition->setVisible(visible);
    m_file->setVisible(visible);
    m_references->setVisible(visible);
    for (int i = 0; i < m_buttons.size(); ++i)
        m_buttons[i]->setVisible(visible && i != 3);
}

void frmWords::ShowMaking(const QString &text)
{
    m_isMaking = true;
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
    m_isMaking = false;
    m_makingLabel->hide();
    m_stop->hide();
    setWindowTitle(CaptionFor(databasePath));
    m_list->clear();
    m_records.clear();
    WordsDatabase database(ResolvePath(databasePath));
    const bool read = database.Open() && database.LoadWords(m_table);
    if (read) {
        m_records = m_table.InIndexOrder();
        for (const WordRecord *record : std::as_const(m_records))
            m_list->addItem(ListEntry(*record));
    }
    // Hiding Stop left the focus on the frame around us: hand it to the list
    // so keys reach the window, but take it from no other window.
    const QWidget *focus = QApplication::focusWidget();
    const bool focusHere = !focus || focus == this || isAncestorOf(focus) || focus->isAncestorOf(this);
    SetListVisible(true);
    if (!m_records.isEmpty())
        m_list->setCurrentRow(0);
    if (focusHere)
        m_list->setFocus();
    return read;
}

void frmWords::ShowRecord(int row)
{
    if (row < 0 || row >= m_records.size())
        return;
    const WordRecord &record = *m_records[row];
    m_definition->setPlainText(record.definition);
    m_file->setText(record.file ? QStringLiteral("File: ") + *record.file
                                : QStringLiteral("In Forth ROM (or library file if indicated)"));
    if (record.references)
        m_references->setText(QStringLiteral("References: ") + QString::number(*record.references));
    else
        m_references->setText(IsNotationEntry(record.word) ? QStringLiteral("not counted")
                                                           : QStringLiteral("UNREFERENCED"));
}

} // namespace kvr
