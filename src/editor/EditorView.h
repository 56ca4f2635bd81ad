#pragma once
// One editor window as the pool sees it. The windowed program implements it
// with frmNotePad; tests use an in-memory window.
#include "editor/EditCommands.h"
#include <QString>
#include <QStringList>

class QObject;

namespace kvr {

class EditorPool;

class EditorView {
public:
    virtual ~EditorView() = default;

    virtual QObject *Object() = 0;
    virtual QString Caption() const = 0;
    virtual void SetCaption(const QString &caption) = 0;

    // Text with CR LF line ends; positions count CR LF as two.
    virtual QString Text() const = 0;
    // Text as loaded: no change events, no undo history.
    virtual void SetText(const QString &text) = 0;
    // A change as if typed: undoable, raises the change handling.
    virtual void Apply(const EditAction &action) = 0;
    virtual int SelStart() const = 0;
    virtual int SelLength() const = 0;
    virtual void Select(int start, int length) = 0;

    // Cascades the window for slot `index` and records the index as its tag.
    virtual void Place(int index) = 0;
    // Shows the window, normal size, and brings it forward.
    virtual void Activate() = 0;
    // Closes through the save question; false when the window stayed.
    virtual bool Close() = 0;
    // Unloads without any question (a load that failed).
    virtual void Discard() = 0;

    virtual void ShowRecentFiles(const QStringList &entries) = 0;
    virtual void ShowBackups(const QStringList &names, int selected) = 0;
    virtual void HideBackups() = 0;
    // Tab-width check marks, colours and font from the pool's settings.
    virtual void RefreshOptions() = 0;
};

class EditorViewFactory {
public:
    virtual ~EditorViewFactory() = default;
    virtual EditorView *CreateView(EditorPool &pool, int index) = 0;
};

} // namespace kvr
