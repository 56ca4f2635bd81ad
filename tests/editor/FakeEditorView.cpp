#include "FakeEditorView.h"

namespace kvr::test {

void FakeEditorView::SetText(const QString &t)
{
    text = t;
    selStart = 0;
    selLength = 0;
}

void FakeEditorView::Apply(const EditAction &action)
{
    if (action.changesText) {
        text.replace(action.start, action.removed, action.inserted);
        m_pool.TextChanged(index);
    }
    Select(action.selStart, action.selLength);
}

void FakeEditorView::Select(int start, int length)
{
    selStart = std::clamp(start, 0, static_cast<int>(text.size()));
    selLength = std::clamp(length, 0, static_cast<int>(text.size()) - selStart);
}

bool FakeEditorView::Close()
{
    if (!m_pool.QueryClose(index))
        return false;
    closed = true;
    m_pool.Unload(index);
    return true;
}

void FakeEditorView::Discard()
{
    closed = true;
    m_pool.Unload(index);
}

void FakeEditorView::ShowBackups(const QStringList &names, int selected)
{
    backups = names;
    backupSelected = selected;
    backupsShown = true;
}

void FakeEditorView::Type(const QString &typed)
{
    EditAction action;
    action.changesText = true;
    action.start = selStart;
    action.removed = selLength;
    action.inserted = typed;
    action.selStart = selStart + static_cast<int>(typed.size());
    Apply(action);
}

EditorView *FakeFactory::CreateView(EditorPool &pool, int index)
{
    auto *view = new FakeEditorView(pool, index);
    view->setParent(&owner);
    created << view;
    return view;
}

PoolFixture::PoolFixture()
{
    const Paths paths(dir.filePath(QStringLiteral("settings")));
    paths.Prepare();
    context = std::make_unique<AppContext>(paths, prompts, clock);
    pool = std::make_unique<EditorPool>(*context, factory);
}

FakeEditorView *PoolFixture::View(int index) const
{
    return dynamic_cast<FakeEditorView *>(pool->Document(index));
}

} // namespace kvr::test
