#pragma once
// The words database in the windowed program: the Definitions menu of every
// editor window, the builder, and frmWords in the frame showing its progress.
#include "words/ui/frmWords.h"
#include <QObject>
#include <QPointer>

class QAction;
class QMdiArea;
class QMdiSubWindow;

namespace kvr {

class AppContext;
class DatabaseBuilder;
class EditorHost;

class WordsWindows : public QObject {
    Q_OBJECT
public:
    WordsWindows(AppContext &context, EditorHost *editor, QMdiArea *area, QObject *parent = nullptr);
    ~WordsWindows() override;

    DatabaseBuilder &Builder() { return *m_builder; }
    frmWords *Window() const { return m_window.data(); }

    // Adds mnuD with mnuDMake and mnuDView, and Ctrl+F1, to editor window `index`.
    void Install(int index, QObject *window);
    // mnuDMake of editor window `index`.
    void MakeDatabase(int index);
    // Ctrl+F1 in editor window `index`: the current database, the word under
    // the caret selected.
    void ShowWordAtCaret(int index);
    // mnuMWords: the template of the computer type.
    void BrowseRomWords();
    // mnuDView: a database the user chooses.
    void ChooseDatabase();
    // The window on the current words database, `word` selected; false when
    // the database cannot be read.
    bool ShowDatabase(const QString &word = QString());
    // Opens `file` in an editor window with line `line` selected.
    void OpenDefinition(const QString &file, int line);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void BringForward();
    void ActivatePrevious();
    // Neither the words window nor the chooser serve the plain terminal; a
    // missing template is told. True when the command may go on.
    bool TemplateReady();

    AppContext &m_context;
    EditorHost *m_editor;
    QMdiArea *m_area;
    DatabaseBuilder *m_builder;
    QPointer<frmWords> m_window;
    QPointer<QMdiSubWindow> m_subWindow;
    QList<QPointer<QAction>> m_makeItems;
};

} // namespace kvr
