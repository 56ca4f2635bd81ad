#include "editor/ui/EditorWindows.h"
#include "editor/RecentFiles.h"
#include "editor/ui/frmFind.h"
#include "editor/ui/frmNotePad.h"
#include <QAction>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace kvr {

EditorWindows::EditorWindows(AppContext &context, QMdiArea *area, QObject *parent)
    : QObject(parent), m_area(area), m_pool(context, *this, this)
{
    connect(&m_pool, &EditorPool::FindDialogRequested, this, &EditorWindows::ShowFind);
    connect(&m_pool, &EditorPool::RecentFilesChanged, this, &EditorWindows::ShowFrameRecentFiles);
}

EditorView *EditorWindows::CreateView(EditorPool &pool, int index)
{
    auto *window = new frmNotePad(pool, index);
    if (m_area) {
        QMdiSubWindow *sub = m_area->addSubWindow(window);
        sub->setAttribute(Qt::WA_DeleteOnClose);
        sub->resize(680, 460);
        sub->show();
    } else {
        window->show();
    }
    return window;
}

void EditorWindows::ConnectFrame(QWidget *frame)
{
    m_frame = frame;
    m_frameRecent.clear();
    if (!frame)
        return;
    // Only the frame's own menus, not those of windows inside it.
    auto *mainWindow = qobject_cast<QMainWindow *>(frame);
    QObject *menus = mainWindow && mainWindow->menuWidget() ? static_cast<QObject *>(mainWindow->menuWidget())
                                                            : static_cast<QObject *>(frame);
    auto find = [menus](const QString &name) { return menus->findChild<QAction *>(name); };
    if (QAction *action = find(QStringLiteral("mnuFNew")))
        connect(action, &QAction::triggered, &m_pool, &EditorPool::FileNew);
    if (QAction *action = find(QStringLiteral("mnuFOpen")))
        connect(action, &QAction::triggered, &m_pool, &EditorPool::FileOpenDialog);
    if (QAction *action = find(QStringLiteral("mnuFDelete")))
        connect(action, &QAction::triggered, &m_pool, &EditorPool::FileDelete);
    for (int i = 0; i <= RecentFileCount; ++i) {
        QAction *action = find(QStringLiteral("mnuRecentFile(%1)").arg(i));
        m_frameRecent << action;
        if (action && i > 0)
            connect(action, &QAction::triggered, this, [this, action] {
                if (!action->data().toString().isEmpty())
                    m_pool.OpenFile(action->data().toString());
            });
    }
    ShowFrameRecentFiles(m_pool.RecentFiles());
}

void EditorWindows::ShowFrameRecentFiles(const QStringList &entries)
{
    if (m_frameRecent.isEmpty())
        return;
    bool any = false;
    for (int i = 1; i <= RecentFileCount && i <= entries.size(); ++i) {
        const QString &entry = entries[i - 1];
        QAction *action = m_frameRecent.value(i);
        if (!action || IsUnusedEntry(entry))
            continue;
        QString text = entry;
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        action->setText(text);
        action->setData(entry);
        action->setVisible(true);
        any = true;
    }
    if (any && m_frameRecent.value(0))
        m_frameRecent.value(0)->setVisible(true);
}

void EditorWindows::ShowFind(const QString &prefill)
{
    if (m_find)
        m_find->close();
    QWidget *frame = m_frame ? m_frame.data() : (m_area ? m_area->window() : nullptr);
    m_find = new frmFind(m_pool, prefill, frame);
    m_find->show();
    m_find->raise();
    m_find->activateWindow();
}

} // namespace kvr
