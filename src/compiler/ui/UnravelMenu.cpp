#include "compiler/ui/UnravelMenu.h"
#include "compiler/Unravel.h"
#include "editor/EditorPool.h"
#include <QAction>
#include <QMenu>
#include <QWidget>

namespace kvr {

UnravelMenu::UnravelMenu(AppContext &context, EditorPool &pool, QObject *parent)
    : QObject(parent), m_context(context), m_pool(pool)
{
    connect(&pool, &EditorHost::EditorCreated, this, &UnravelMenu::Install);
}

void UnravelMenu::Install(int index, QObject *object)
{
    auto *window = qobject_cast<QWidget *>(object);
    QMenu *file = window ? window->findChild<QMenu *>(QStringLiteral("mnuFile")) : nullptr;
    if (!file || file->findChild<QAction *>(QStringLiteral("mnuFUnravel")))
        return;
    auto *item = new QAction(QStringLiteral("&Unravel INCLUDEs"), file);
    item->setObjectName(QStringLiteral("mnuFUnravel"));
    // Beside the other whole-file commands, above the recent files.
    QAction *before = file->findChild<QAction *>(QStringLiteral("mnuRecentFile(0)"));
    file->insertAction(before, item);
    connect(item, &QAction::triggered, this, [this, index] { Unravel(index); });
}

void UnravelMenu::Unravel(int index)
{
    Unraveller unraveller(m_context);
    unraveller.askSaveName = [this](const QString &caption) { return m_pool.AskSaveName(caption); };
    unraveller.setWorkingFileName = [this](const QString &name) { m_pool.SetWorkingFileName(name); };
    unraveller.Unravel(m_pool.Caption(index));
}

} // namespace kvr
