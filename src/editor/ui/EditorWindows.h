#pragma once
// The editor windows inside the frame: creates each frmNotePad in the
// frame's QMdiArea for the pool, shows the Find dialog and connects the
// frame's own File menu items to the pool.
#include "editor/EditorPool.h"
#include <QPointer>

class QAction;
class QMdiArea;

namespace kvr {

class frmFind;

class EditorWindows : public QObject, public EditorViewFactory {
    Q_OBJECT
public:
    EditorWindows(AppContext &context, QMdiArea *area, QObject *parent = nullptr);

    EditorPool &Pool() { return m_pool; }
    // Connects mnuFNew, mnuFOpen, mnuFDelete and mnuRecentFile(0..8) found
    // in `frame` (by object name) and keeps the recent items up to date.
    void ConnectFrame(QWidget *frame);

    EditorView *CreateView(EditorPool &pool, int index) override;

private:
    void ShowFind(const QString &prefill);
    void ShowFrameRecentFiles(const QStringList &entries);

    QMdiArea *m_area;
    EditorPool m_pool;
    QPointer<QWidget> m_frame;
    // The frame's own mnuRecentFile(0..8), found before editor windows
    // with items of the same names exist inside it.
    QList<QPointer<QAction>> m_frameRecent;
    QPointer<frmFind> m_find;
};

} // namespace kvr
