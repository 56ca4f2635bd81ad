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

    // Adds mnuD with mnuDMake to editor window `index`.
    void Install(int index, QObject *window);
    // mnuDMake of editor window `index`.
    void MakeDatabase(int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void BringForward();
    void ActivatePrevious();

    AppContext &m_context;
    EditorHost *m_editor;
    QMdiArea *m_area;
    DatabaseBuilder *m_builder;
    QPointer<frmWords> m_window;
    QPointer<QMdiSubWindow> m_subWindow;
    QList<QPointer<QAction>> m_makeItems;
};

} // namespace kvr
