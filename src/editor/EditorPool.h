#pragma once
// The pool of editor windows (Document, indexed from 1) with its parallel
// per-window records (FState), and the file operations on them: new, open,
// load, save, save as, close, delete, the recent-file list, backups,
// find and the window-wide editing options.
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "editor/EditorHost.h"
#include "editor/EditorView.h"
#include "editor/FindEngine.h"
#include <QFont>
#include <QList>
#include <QPointer>

namespace kvr {

struct FStateRecord {
    bool Deleted = false;
    bool Dirty = false;
    quint32 Color = 0;
};

class EditorPool : public EditorHost {
    Q_OBJECT
public:
    EditorPool(AppContext &context, EditorViewFactory &factory, QObject *parent = nullptr);
    ~EditorPool() override;

    // EditorHost
    int ActiveIndex() const override { return m_active; }
    QString Caption(int index) const override;
    QString Text(int index) const override;
    int SelStart(int index) const override;
    int SelLength(int index) const override;
    void Select(int index, int start, int length) override;
    void OpenFile(const QString &name) override;
    void LoadFile(const QString &name) override;
    void SaveBeforeCompile(int index) override;
    bool ShowLine(const QString &caption, int lineNumber) override;
    QList<int> OpenIndexes() const override;

    AppContext &Context() const { return m_context; }
    EditorView *Document(int index) const;
    // The window, when it has a file name; otherwise says that `command`
    // needs one and gives nullptr.
    EditorView *NamedDocument(int index, const QString &command);
    FStateRecord FState(int index) const;
    int UpperBound() const { return static_cast<int>(m_document.size()) - 1; }
    int IndexOfCaption(const QString &caption) const;
    // The file of window `index` as named on disk (its caption when unknown).
    QString DiskName(int index) const;

    int FindFreeIndex();
    int FileNew();
    void FileOpenDialog();
    // The terminal's capture: shows a file in an editor window.
    void DisplayFile(const QString &name) { OpenFile(name); }
    bool SaveFile(const QString &name, int index, bool keepCaption);
    // The chosen name in upper case; empty when cancelled.
    QString SaveFileAs(const QString &currentCaption);
    // The same dialog, the name as the user typed it (a new file is made
    // under that spelling).
    QString AskSaveName(const QString &currentCaption);
    bool Save(int index);   // mnuFSave
    bool SaveAs(int index); // mnuFSaveAs
    // The save question before a window goes; false keeps it open.
    bool QueryClose(int index);
    // The window has gone: its slot becomes free.
    void Unload(int index);
    // Closes every editor window (program exit); false when one stayed.
    bool CloseAll();
    void FileDelete();

    void AddRecentFile(const QString &name);
    void GetRecentFiles();
    QStringList RecentFiles() const { return m_recent; }

    void Backup(int index);
    // When no question can be asked (the session ends): the text of every
    // changed window goes to the next numbered backup of its file (of
    // UNTITLED.KVR in the program folder for a window without one). One
    // line per window says where it went or why it could not.
    QStringList KeepChangedTextAsBackups();
    void Restore(int index);
    void RestoreChosen(int index, const QString &entry);
    void RestoreCancelled(int index);

    // Change of the text and focus, from the windows.
    void TextChanged(int index);
    void GotFocus(int index);
    void LineTooLong();
    void ActivateNext(int index); // Shift+Tab
    void InsertFile(int index);
    void InsertDateStamp(int index);
    void Halt();                  // F2
    void TabPressedWithoutSpaces(); // Tab with "Tab to Interactive"

    int TabSpaces() const;
    void SetTabSpaces(int spaces);
    QColor EditorColor(bool foreground) const;
    void ChooseEditorColor(bool foreground);
    QFont EditorFont() const { return m_font; }
    void ChooseEditorFont();
    void SetEditorFont(const QFont &font);
    void ChooseExternalEditor(); // mnuOExtEditor
    void StartExternalEditor();  // mnuFExtEditor: the current file in it

    // Find (Edit menu and the dialog).
    FindState &Find() { return m_find; }
    // mnuEFind: the text the dialog starts with; the dialog is then shown.
    void ShowFind(int index);
    // mnuEFindnext
    void FindNext(int index);
    // The dialog's Find: true when the dialog should close (it always does;
    // false tells that the user declined to continue).
    bool FindFromDialog(const QString &findString);

    QString CurrentFileName() const { return m_context.settings.currentFile; }
    QString WorkingFileName() const { return m_workingFileName; }
    void SetWorkingFileName(const QString &name) { m_workingFileName = name; }

signals:
    void HaltRequested();
    void TerminalFocusRequested();
    void RecentFilesChanged(const QStringList &entries);
    void ExitRequested();
    void HelpRequested(const QString &topic);
    void FindDialogRequested(const QString &prefill);

private:
    bool IsOpen(int index) const;
    static bool IsUnnamed(const QString &caption);
    EditorView *CreateWindow(int index);
    // Whether the window can take `added` characters for `removed` ones;
    // when it cannot, the box says so.
    bool FitsOrSays(const EditorView *view, int removed, qsizetype added);

    AppContext &m_context;
    EditorViewFactory &m_factory;
    QList<EditorView *> m_document{nullptr}; // slot 0 unused
    QList<QPointer<QObject>> m_alive{nullptr};
    QList<FStateRecord> m_fstate{FStateRecord{}};
    QList<QString> m_backupDirectory{QString()};
    // Each window's file as it is named on disk; the caption is its
    // upper-cased logical name, which need not lead back to it (MAß → MASS).
    QList<QString> m_diskPath{QString()};
    QStringList m_recent;
    int m_active = 0;
    QString m_workingFileName;
    FindState m_find;
    QFont m_font;
};

// The box for a file that cannot be read, with the system's reason.
QString CantOpenFile(const QString &name, const QString &reason);

// The box for a text that the window cannot take (paste, insert, restore).
QString TooLongForOperation();

} // namespace kvr
