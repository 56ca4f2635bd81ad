#include "FakeEditorView.h"

namespace kvr::test {

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
    selStart = std::clamp(start, 0, int(text.size()));
    selLength = std::clamp(length, 0, int(text.size()) - selStart);
}

void FakeEditorView::Type(const QString &typed)
{
    EditAction action;
    action.changesText = true;
    action.start = selStart;
    action.removed = selLength;
    action.inserted = typed;
    action.selStart = selStart + int(typed.size());
    Apply(action);
}

PoolFixture::PoolFixture()
{
    const Paths paths(dir.filePath(QStringLiteral("settings")));
    paths.Prepare();
    context = std::make_unique<AppContext>(paths, prompts, clock);
    pool = std::make_unique<EditorPool>(*context, factory);
}

} // namespace kvr::test
