#include "editor/ui/frmNotePad.h"
#include "app/ui/PagePrinter.h"
#include "editor/EditorPool.h"
#include "editor/RecentFiles.h"
#include "editor/ui/ForthHighlighter.h"
#include "editor/ui/SourceEdit.h"
#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTextBlock>
#include <QVBoxLayout>
#include <QDateTime>
#include <QLocale>

namespace kvr {

frmNotePad::frmNotePad(EditorPool &pool, int index, QWidget *parent)
    : QMainWindow(parent), m_pool(pool), m_index(index)
{
    setObjectName(QStringLiteral("frmNotePad"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty("Tag", QString::number(index));

    auto *central = new QWidget(this);
    auto *layout = new QHBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    m_text = new SourceEdit(central);
    layout->addWidget(m_text, 1);

    m_backups = new QFrame(central);
    m_backups->setObjectName(QStringLiteral("fraBackups"));
    m_backups->setFrameShape(QFrame::StyledPanel);
    auto *backupLayout = new QVBoxLayout(m_backups);
    backupLayout->addWidget(new QLabel(tr("Backups"), m_backups));
    m_backupList = new QListWidget(m_backups);
    m_backupList->setObjectName(QStringLiteral("lstBackups"));
    backupLayout->addWidget(m_backupList, 1);
    auto *ok = new QPushButton(tr("OK"), m_backups);
    ok->setObjectName(QStringLiteral("cmdOK"));
    auto *cancel = new QPushButton(tr("Cancel"), m_backups);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    backupLayout->addWidget(ok);
    backupLayout->addWidget(cancel);
    m_backups->hide();
    layout->addWidget(m_backups);
    setCentralWidget(central);

    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    statusBar()->addWidget(m_status);

    m_highlighter = new ForthHighlighter(m_text->document());
    BuildMenus();
    m_text->installEventFilter(this);
    // Whoever gives this window the focus means its text.
    setFocusProxy(m_text);
    m_backupList->installEventFilter(this);

    connect(ok, &QPushButton::clicked, this, [this] {
        if (QListWidgetItem *item = m_backupList->currentItem())
            m_pool.RestoreChosen(m_index, item->text());
        else
            m_pool.RestoreCancelled(m_index);
    });
    connect(cancel, &QPushButton::clicked, this, [this] { m_pool.RestoreCancelled(m_index); });
    connect(m_text, &SourceEdit::Edited, this, [this] { m_pool.TextChanged(m_index); });
    connect(m_text, &SourceEdit::LineTooLong, this, [this] { m_pool.LineTooLong(); });
    connect(m_text, &SourceEdit::TooLong, this, [this] {
        m_pool.Context().prompts.Message(TooLongForOperation(), PromptIcon::Information);
    });
    connect(m_text, &SourceEdit::TabToTerminal, &m_pool, &EditorPool::TabPressedWithoutSpaces);
    connect(m_text, &SourceEdit::NextEditor, this, [this] { m_pool.ActivateNext(m_index); });
    connect(m_text, &SourceEdit::HaltRequested, &m_pool, &EditorPool::Halt);
    connect(m_text, &SourceEdit::HelpRequested, this,
            [this] { emit m_pool.HelpRequested(QStringLiteral("editorwindow")); });
    connect(m_text, &SourceEdit::FocusGained, this, [this] { m_pool.GotFocus(m_index); });
    connect(m_text, &QPlainTextEdit::cursorPositionChanged, this, &frmNotePad::UpdateStatus);
    UpdateStatus();
    resize(640, 420);
}

QAction *frmNotePad::AddAction(QMenu *menu, const QString &name, const QString &text,
                               const QKeySequence &shortcut)
{
    QAction *action = menu->addAction(text);
    action->setObjectName(name);
    if (!shortcut.isEmpty()) {
        // Also on the window itself: a menu's shortcut only counts where
        // the focus lies inside the widget the action belongs to.
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(action);
    }
    return action;
}

void frmNotePad::BuildMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->setObjectName(QStringLiteral("mnuFile"));
    connect(AddAction(file, QStringLiteral("mnuFNew"), tr("&New"), QKeySequence::New),
            &QAction::triggered, &m_pool, &EditorPool::FileNew);
    connect(AddAction(file, QStringLiteral("mnuFOpen"), tr("&Open..."), QKeySequence::Open),
            &QAction::triggered, &m_pool, &EditorPool::FileOpenDialog);
    connect(AddAction(file, QStringLiteral("mnuFSave"), tr("&Save"), QKeySequence::Save),
            &QAction::triggered, this, [this] { m_pool.Save(m_index); });
    connect(AddAction(file, QStringLiteral("mnuFSaveAs"), tr("Save &As...")), &QAction::triggered,
            this, [this] { m_pool.SaveAs(m_index); });
    connect(AddAction(file, QStringLiteral("mnuFClose"), tr("&Close"),
                      QKeySequence(Qt::CTRL | Qt::Key_F4)), &QAction::triggered, this,
            [this] { Close(); });
    connect(AddAction(file, QStringLiteral("mnuFExtEditor"), tr("&External editor")),
            &QAction::triggered, &m_pool, &EditorPool::StartExternalEditor);
    file->addSeparator();
    connect(AddAction(file, QStringLiteral("mnuFPrint"), tr("&Print..."), QKeySequence::Print),
            &QAction::triggered, this, [this] {
                PrintWithDialog(MakePrintJob(), m_pool.Context().prompts,
                                m_pool.Context().paths.ProgramFolder() + QStringLiteral("SOURCE.PDF"), this);
            });
    connect(AddAction(file, QStringLiteral("mnuFPrintPreview"), tr("Print pre&view...")), &QAction::triggered,
            this, [this] { PreviewPrint(MakePrintJob(), this); });
    file->addSeparator();
    connect(AddAction(file, QStringLiteral("mnuFInsert"), tr("&Insert file...")),
            &QAction::triggered, this, [this] { m_pool.InsertFile(m_index); });
    connect(AddAction(file, QStringLiteral("mnuFBackup"), tr("&Backup...")), &QAction::triggered,
            this, [this] { m_pool.Backup(m_index); });
    connect(AddAction(file, QStringLiteral("mnuFRestore"), tr("&Restore...")),
            &QAction::triggered, this, [this] { m_pool.Restore(m_index); });
    connect(AddAction(file, QStringLiteral("mnuFDelete"), tr("&Delete file...")),
            &QAction::triggered, &m_pool, &EditorPool::FileDelete);
    for (int i = 0; i <= RecentFileCount; ++i) {
        QAction *item = i == 0 ? file->addSeparator() : file->addAction(QString());
        item->setObjectName(QStringLiteral("mnuRecentFile(%1)").arg(i));
        item->setVisible(false);
        if (i > 0)
            connect(item, &QAction::triggered, this,
                    [this, item] { m_pool.OpenFile(item->data().toString()); });
        m_recent << item;
    }
    file->addSeparator();
    connect(AddAction(file, QStringLiteral("mnuFExit"), tr("E&xit")), &QAction::triggered,
            &m_pool, &EditorPool::ExitRequested);

    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    edit->setObjectName(QStringLiteral("mnuEdit"));
    connect(AddAction(edit, QStringLiteral("mnuEUndo"), tr("&Undo"), QKeySequence::Undo),
            &QAction::triggered, m_text, &QPlainTextEdit::undo);
    connect(AddAction(edit, QStringLiteral("mnuERedo"), tr("&Redo"), QKeySequence::Redo),
            &QAction::triggered, m_text, &QPlainTextEdit::redo);
    edit->addSeparator();
    connect(AddAction(edit, QStringLiteral("mnuECut"), tr("Cu&t"), QKeySequence::Cut),
            &QAction::triggered, this, &frmNotePad::Cut);
    connect(AddAction(edit, QStringLiteral("mnuECopy"), tr("&Copy"), QKeySequence::Copy),
            &QAction::triggered, this, &frmNotePad::Copy);
    connect(AddAction(edit, QStringLiteral("mnuEPaste"), tr("&Paste"), QKeySequence::Paste),
            &QAction::triggered, this, &frmNotePad::Paste);
    connect(AddAction(edit, QStringLiteral("mnuEDelete"), tr("&Delete")), &QAction::triggered,
            this, [this] {
                if (const auto action = DeleteAction(Text(), SelStart(), SelLength()))
                    Apply(*action);
            });
    connect(AddAction(edit, QStringLiteral("mnuEInvert"), tr("&Invert case")),
            &QAction::triggered, this, &frmNotePad::InvertSelection);
    connect(AddAction(edit, QStringLiteral("mnuESelectAll"), tr("Select &all")),
            &QAction::triggered, m_text, &QPlainTextEdit::selectAll);
    connect(AddAction(edit, QStringLiteral("mnuETime"), tr("Date and &time")),
            &QAction::triggered, this, [this] { m_pool.InsertDateStamp(m_index); });
    edit->addSeparator();
    connect(AddAction(edit, QStringLiteral("mnuEFind"), tr("&Find..."), QKeySequence::Find),
            &QAction::triggered, this, [this] { m_pool.ShowFind(m_index); });
    connect(AddAction(edit, QStringLiteral("mnuEFindnext"), tr("Find &next"),
                      QKeySequence(Qt::Key_F3)),
            &QAction::triggered, this, [this] { m_pool.FindNext(m_index); });
    connect(AddAction(edit, QStringLiteral("mnuEGoto"), tr("&Go to line..."),
                      QKeySequence(Qt::CTRL | Qt::Key_G)),
            &QAction::triggered, this, &frmNotePad::GoToLine);

    QMenu *options = menuBar()->addMenu(tr("&Options"));
    options->setObjectName(QStringLiteral("mnuOptions"));
    QMenu *tab = options->addMenu(tr("&Use of TAB"));
    tab->setObjectName(QStringLiteral("mnuOTab"));
    auto *group = new QActionGroup(this);
    const QList<QPair<QString, QString>> tabItems{{QStringLiteral("mnuOTInt"), tr("&Tab to Interactive")},
                                                  {QStringLiteral("mnuO2"), tr("&2 spaces")},
                                                  {QStringLiteral("mnuO3"), tr("&3 spaces")},
                                                  {QStringLiteral("mnuO4"), tr("&4 spaces")}};
    const int values[] = {0, 2, 3, 4};
    for (int i = 0; i < 4; ++i) {
        QAction *item = AddAction(tab, tabItems[i].first, tabItems[i].second);
        item->setCheckable(true);
        group->addAction(item);
        const int value = values[i];
        connect(item, &QAction::triggered, this, [this, value] { m_pool.SetTabSpaces(value); });
        m_tabItems << item;
    }
    connect(AddAction(options, QStringLiteral("mnuOCBackground"), tr("&Background colour...")),
            &QAction::triggered, this, [this] { m_pool.ChooseEditorColor(false); });
    connect(AddAction(options, QStringLiteral("mnuOCForeground"), tr("&Foreground colour...")),
            &QAction::triggered, this, [this] { m_pool.ChooseEditorColor(true); });
    connect(AddAction(options, QStringLiteral("mnuOFont"), tr("F&ont...")), &QAction::triggered,
            &m_pool, &EditorPool::ChooseEditorFont);
    connect(AddAction(options, QStringLiteral("mnuOExtEditor"), tr("&External editor...")),
            &QAction::triggered, &m_pool, &EditorPool::ChooseExternalEditor);

    // Filled by the compiler when the window is announced.
    QMenu *compile = menuBar()->addMenu(tr("&Compile"));
    compile->setObjectName(QStringLiteral("mnuCompile"));
}

void frmNotePad::SetCaption(const QString &caption)
{
    m_caption = caption;
    setWindowTitle(caption);
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget()))
        sub->setWindowTitle(caption);
}

QString frmNotePad::Text() const
{
    return m_text->ModelText();
}

void frmNotePad::SetText(const QString &text)
{
    m_text->LoadText(text);
}

void frmNotePad::Apply(const EditAction &action)
{
    m_text->ApplyAction(action);
}

int frmNotePad::SelStart() const
{
    return m_text->SelStart();
}

int frmNotePad::SelLength() const
{
    return m_text->SelLength();
}

void frmNotePad::Select(int start, int length)
{
    m_text->SelectModel(start, length);
    m_text->ensureCursorVisible();
}

void frmNotePad::Place(int index)
{
    m_index = index;
    setProperty("Tag", QString::number(index));
    // 360 twips per slot: a quarter inch.
    const int step = std::max(1, logicalDpiX() / 4);
    QWidget *window = parentWidget() ? parentWidget() : this;
    window->move((index - 1) * step, (index - 1) * step);
}

void frmNotePad::Activate()
{
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget())) {
        sub->showNormal();
        if (QMdiArea *area = sub->mdiArea())
            area->setActiveSubWindow(sub);
    } else {
        showNormal();
        raise();
        activateWindow();
    }
    m_text->setFocus();
}

bool frmNotePad::Close()
{
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget()))
        return sub->close();
    return close();
}

void frmNotePad::Discard()
{
    m_discarding = true;
    Close();
}

void frmNotePad::closeEvent(QCloseEvent *event)
{
    if (!m_discarding && !m_pool.QueryClose(m_index)) {
        event->ignore();
        return;
    }
    event->accept();
    m_pool.Unload(m_index);
}

QAction *frmNotePad::MenuForMnemonic(const QKeyEvent *key) const
{
    if ((key->modifiers() & (Qt::AltModifier | Qt::ControlModifier | Qt::MetaModifier)) != Qt::AltModifier)
        return nullptr;
    const QKeySequence pressed(key->key() | Qt::ALT);
    for (QAction *action : menuBar()->actions()) {
        if (action->isVisible() && action->isEnabled()
            && QKeySequence::mnemonic(action->text()) == pressed)
            return action;
    }
    return nullptr;
}

bool frmNotePad::eventFilter(QObject *watched, QEvent *event)
{
    // The frame's menu bar has the same mnemonics (Alt+F, Alt+O...); in an
    // editor they open the editor's own menus.
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (QAction *menu = MenuForMnemonic(key)) {
            event->accept();
            if (event->type() == QEvent::KeyPress)
                menuBar()->setActiveAction(menu);
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmNotePad::ShowRecentFiles(const QStringList &entries)
{
    bool any = false;
    for (int i = 1; i <= RecentFileCount && i <= entries.size(); ++i) {
        const QString &entry = entries[i - 1];
        if (IsUnusedEntry(entry))
            continue;
        QString text = entry;
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        m_recent[i]->setText(text);
        m_recent[i]->setData(entry);
        m_recent[i]->setVisible(true);
        any = true;
    }
    if (any)
        m_recent[0]->setVisible(true);
}

void frmNotePad::ShowBackups(const QStringList &names, int selected)
{
    m_backupList->clear();
    m_backupList->addItems(names);
    m_backupList->setCurrentRow(selected);
    m_backups->show();
}

void frmNotePad::HideBackups()
{
    // The list had the keys; hiding it would hand them to whatever widget
    // of the frame comes next (the terminal), not to this text.
    const bool hadFocus = m_backups->isAncestorOf(QApplication::focusWidget());
    m_backups->hide();
    if (hadFocus)
        m_text->setFocus();
}

void frmNotePad::RefreshOptions()
{
    const int spaces = m_pool.TabSpaces();
    m_text->SetTabSpaces(spaces);
    const int values[] = {0, 2, 3, 4};
    for (int i = 0; i < 4; ++i)
        m_tabItems[i]->setChecked(values[i] == spaces);
    const QColor background = m_pool.EditorColor(false);
    const QColor foreground = m_pool.EditorColor(true);
    QPalette palette = m_text->palette();
    palette.setColor(QPalette::Base, background);
    palette.setColor(QPalette::Text, foreground);
    m_text->setPalette(palette);
    QColor guide = foreground;
    guide.setAlpha(50);
    m_text->SetGuideColor(guide);
    m_text->setFont(m_pool.EditorFont());
    m_highlighter->SetBaseColors(background, foreground);
}

QWidget *frmNotePad::ClipboardTarget() const
{
    QWidget *focus = QApplication::focusWidget();
    if (qobject_cast<QLineEdit *>(focus) || qobject_cast<QPlainTextEdit *>(focus))
        return focus;
    return m_text;
}

void frmNotePad::Copy()
{
    QWidget *target = ClipboardTarget();
    if (auto *line = qobject_cast<QLineEdit *>(target))
        line->copy();
    else if (auto *text = qobject_cast<QPlainTextEdit *>(target))
        text->copy();
}

void frmNotePad::Cut()
{
    QWidget *target = ClipboardTarget();
    if (auto *line = qobject_cast<QLineEdit *>(target))
        line->cut();
    else if (auto *text = qobject_cast<QPlainTextEdit *>(target))
        text->cut();
}

void frmNotePad::Paste()
{
    QWidget *target = ClipboardTarget();
    if (auto *line = qobject_cast<QLineEdit *>(target))
        line->paste();
    else if (auto *text = qobject_cast<QPlainTextEdit *>(target))
        text->paste();
}

void frmNotePad::InvertSelection()
{
    QWidget *target = ClipboardTarget();
    if (auto *line = qobject_cast<QLineEdit *>(target)) {
        if (!line->hasSelectedText() || line->isReadOnly())
            return;
        const int start = line->selectionStart();
        const QString inverted = InvertCase(line->selectedText());
        line->insert(inverted);
        line->setSelection(start, static_cast<int>(inverted.size()));
        return;
    }
    if (target != m_text) {
        auto *text = qobject_cast<QPlainTextEdit *>(target);
        if (text->isReadOnly()) // a report or the terminal: not ours to change
            return;
        QTextCursor cursor = text->textCursor();
        const int start = cursor.selectionStart();
        const QString inverted = InvertCase(cursor.selectedText());
        cursor.insertText(inverted);
        cursor.setPosition(start);
        cursor.setPosition(start + static_cast<int>(inverted.size()), QTextCursor::KeepAnchor);
        text->setTextCursor(cursor);
        return;
    }
    const int start = SelStart();
    const int length = SelLength();
    if (length == 0)
        return;
    EditAction action;
    action.changesText = true;
    action.start = start;
    action.removed = length;
    action.inserted = InvertCase(Text().mid(start, length));
    action.selStart = start;
    action.selLength = length;
    Apply(action);
}

void frmNotePad::GoToLine()
{
    const int current = m_text->textCursor().blockNumber() + 1;
    const std::optional<QString> answer = m_pool.Context().prompts.Input(
        tr("Go to line (1 to %1):").arg(m_text->document()->blockCount()), AppTitle,
        QString::number(current));
    if (!answer)
        return;
    bool ok = false;
    const int line = answer->trimmed().toInt(&ok);
    if (!ok || line < 1)
        return;
    const QTextBlock block =
        m_text->document()->findBlockByNumber(std::min(line, m_text->document()->blockCount()) - 1);
    QTextCursor cursor = m_text->textCursor();
    cursor.setPosition(block.position());
    m_text->setTextCursor(cursor);
    m_text->centerCursor();
}

void frmNotePad::UpdateStatus()
{
    const QTextCursor cursor = m_text->textCursor();
    m_status->setText(tr("Line %1, Col %2").arg(cursor.blockNumber() + 1).arg(cursor.positionInBlock() + 1));
}

} // namespace kvr

namespace kvr {

PrintJob frmNotePad::MakePrintJob() const
{
    PrintJob job;
    job.title = m_caption + QStringLiteral("  ")
                + QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
    job.text = Text();
    job.font = m_text->font();
    return job;
}

bool frmNotePad::PrintTo(QPrinter &printer) const
{
    return PrintPages(printer, MakePrintJob());
}

} // namespace kvr
