#pragma once
// What the compiler and the other subsystems need from the pool of editor
// windows. Windows are addressed by their pool index (from 1); 0 means none.
#include <QObject>
#include <QString>

namespace kvr {

class EditorHost : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual int ActiveIndex() const = 0;
    virtual QString Caption(int index) const = 0;
    // Window text with CR LF line ends; positions count CR LF as two.
    virtual QString Text(int index) const = 0;
    virtual int SelStart(int index) const = 0;
    virtual int SelLength(int index) const = 0;
    virtual void Select(int index, int start, int length) = 0;

    // Opens `name` in an editor window, or activates the one showing it.
    virtual void OpenFile(const QString &name) = 0;
    // Loads `name` into a new window even when one shows it already.
    virtual void LoadFile(const QString &name) = 0;
    // Saves what must be saved before a compile commanded from `index`;
    // see the compile driver. Updates `Current .KVR file` and the recent list.
    virtual void SaveBeforeCompile(int index) = 0;
    // Activates the first window captioned `caption` and selects its line
    // `lineNumber` (1-based). False when no window shows that file.
    virtual bool ShowLine(const QString &caption, int lineNumber) = 0;
    // Indexes of the open editor windows.
    virtual QList<int> OpenIndexes() const = 0;

signals:
    // A new editor window exists; other subsystems add their menus to it
    // (the window is a QWidget; its empty QMenu "mnuCompile" is theirs to fill).
    void EditorCreated(int index, QObject *window);
};

} // namespace kvr
