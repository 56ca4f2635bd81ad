#include "editor/ui/EditorWindows.h"
#include "editor/RecentFiles.h"
#include "editor/ui/frmFind.h"
#include "editor/ui/frmNotePad.h"
#include <QAction>
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
    if (!frame)
        return;
    auto connectAction = [&](const char *name, auto slot) {
        if (auto *action = frame->findChild<QAction *>(QString::fromLatin1(name)))
            connect(action, &QAction::triggered, &m_pool, slot);
    };
    connectAction("mnuFNew", &EditorPool::FileNew);
    connectAction("mnuFOpen", &EditorPool::FileOpenDialog);
    connectAction("mnuFDelete", &EditorPool::FileDelete);
    for (int i = 1; i <= RecentFileCount; ++i) {
        if (auto *action = frame->findChild<QAction *>(QStringLiteral("mnuRecentFile(%1)").arg(i)))
            connect(action, &QAction::triggered, this, [this, action] {
                const QString name = action->data().toString();
                m_pool.OpenFile(name.isEmpty() ? action->text().replace(QLatin1String("&&"), QLatin1String("&")) : name);
            });
    }
    ShowFrameRecentFiles(m_pool.RecentFiles());
}

void EditorWindows::ShowFrameRecentFiles(const QStringList &entries)
{
    if (!m_frame)
        return;
    bool any = false;
    for (int i = 1; i <= RecentFileCount && i <= entries.size(); ++i) {
        const QString &entry = entries[i - 1];
        auto *action = m_frame->findChild<QAction *>(QStringLiteral("mnuRecentFile(%1)").arg(i));
        if (!action || IsUnusedEntry(entry))
            continue;
        QString text = entry;
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        action->setText(text);
        action->setData(entry);
        action->setVisible(true);
        any = true;
    }
    if (any)
        if (auto *separator = m_frame->findChild<QAction *>(QStringLiteral("mnuRecentFile(0)")))
            separator->setVisible(true);
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
