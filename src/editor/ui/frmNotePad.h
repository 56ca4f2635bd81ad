#pragma once
// The editor window: the text box Text1, its menus, the restore list and a
// status line. It forwards every command to the editor pool and shows what
// the pool decides.
#include "editor/EditorView.h"
#include <QMainWindow>

class QAction;
class QActionGroup;
class QFrame;
class QLabel;
class QListWidget;
class QMenu;
class QPrinter;
class QPushButton;

namespace kvr {

struct PrintJob;
class EditorPool;
class ForthHighlighter;
class SourceEdit;

class frmNotePad : public QMainWindow, public EditorView {
    Q_OBJECT
public:
    frmNotePad(EditorPool &pool, int index, QWidget *parent = nullptr);

    // EditorView
    QObject *Object() override { return this; }
    QString Caption() const override { return m_caption; }
    void SetCaption(const QString &caption) override;
    QString Text() const override;
    void SetText(const QString &text) override;
    void Apply(const EditAction &action) override;
    int SelStart() const override;
    int SelLength() const override;
    void Select(int start, int length) override;
    void Place(int index) override;
    void Activate() override;
    bool Close() override;
    void Discard() override;
    void ShowRecentFiles(const QStringList &entries) override;
    void ShowBackups(const QStringList &names, int selected) override;
    void HideBackups() override;
    void RefreshOptions() override;

    int Index() const { return m_index; }
    SourceEdit *Text1() const { return m_text; }
    // The text under a heading of file name, date and page number, in the
    // editor's font; false when the printer could not be started.
    PrintJob MakePrintJob() const;
    bool PrintTo(QPrinter &printer) const;

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void BuildMenus();
    // The top menu of this window whose mnemonic is Alt+`key`, if any.
    QAction *MenuForMnemonic(const QKeyEvent *key) const;
    QAction *AddAction(QMenu *menu, const QString &name, const QString &text,
                       const QKeySequence &shortcut = {});
    QWidget *ClipboardTarget() const;
    void Copy();
    void Cut();
    void Paste();
    void InvertSelection();
    void GoToLine();
    void UpdateStatus();

    EditorPool &m_pool;
    int m_index;
    QString m_caption;
    bool m_discarding = false;
    SourceEdit *m_text = nullptr;
    ForthHighlighter *m_highlighter = nullptr;
    QFrame *m_backups = nullptr;
    QListWidget *m_backupList = nullptr;
    QLabel *m_status = nullptr;
    QList<QAction *> m_recent; // item 0 is the separator
    QList<QAction *> m_tabItems;
};

} // namespace kvr
