#pragma once
// Fills the Compile menu (mnuCompile) of every editor window and the source
// paths items of its Options menu, keeps the Quick compile and No compile
// display ticks alike in all windows, and lists the recent files.
#include <QHash>
#include <QObject>
#include <QPointer>

class QAction;
class QMenu;
class QWidget;

namespace kvr {

class AppContext;
class CompileDriver;
class EditorHost;

class CompileMenus : public QObject {
    Q_OBJECT
public:
    CompileMenus(AppContext &context, CompileDriver &driver, EditorHost *editor, QObject *parent = nullptr);

    void SetEditorHost(EditorHost *editor);
    // Adds the items to editor window `index` (done for every EditorCreated).
    void Install(int index, QObject *window);
    // The editor window of `index`, while it exists.
    QWidget *Window(int index) const { return m_windows.value(index); }
    // Re-reads the recent-file list into every window's items.
    void RefreshRecentFiles();

    static constexpr int RecentFileCount = 8;

private:
    QAction *AddItem(QMenu *menu, QWidget *window, const QString &name, const QString &caption);
    void SetChecks(const QString &name, bool on);
    QStringList RecentFiles() const;

    AppContext &m_context;
    CompileDriver &m_driver;
    QHash<int, QPointer<QWidget>> m_windows;
};

} // namespace kvr
