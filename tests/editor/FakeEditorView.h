#pragma once
// In-memory editor windows for driving the editor pool without a screen,
// and a pool with its context in a scratch folder.
#include "TempDir.h"
#include "TestClock.h"
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "editor/EditorPool.h"
#include <QTemporaryDir>
#include <memory>

namespace kvr::test {

class FakeEditorView : public QObject, public EditorView {
    Q_OBJECT
public:
    FakeEditorView(EditorPool &pool, int index) : m_pool(pool), index(index) {}

    QObject *Object() override { return this; }
    QString Caption() const override { return caption; }
    void SetCaption(const QString &c) override { caption = c; }
    QString Text() const override { return text; }
    void SetText(const QString &t) override { text = t, selStart = selLength = 0; }
    void Apply(const EditAction &action) override;
    int SelStart() const override { return selStart; }
    int SelLength() const override { return selLength; }
    void Select(int start, int length) override;
    void Place(int i) override { index = i; }
    void Activate() override { ++activations; }
    bool Close() override { return m_pool.QueryClose(index) && (Discard(), true); }
    void Discard() override { closed = true, m_pool.Unload(index); }
    void ShowRecentFiles(const QStringList &entries) override { recent = entries; }
    void ShowBackups(const QStringList &names, int selected) override { backups = names, backupSelected = selected, backupsShown = true; }
    void HideBackups() override { backupsShown = false; }
    void RefreshOptions() override { ++refreshes; }

    // Types `typed` at the caret as the text box would.
    void Type(const QString &typed);

    EditorPool &m_pool;
    int index = 0;
    QString caption, text;
    int selStart = 0, selLength = 0, activations = 0, refreshes = 0, backupSelected = -1;
    bool closed = false, backupsShown = false;
    QStringList recent, backups;
};

class FakeFactory : public EditorViewFactory {
public:
    EditorView *CreateView(EditorPool &pool, int index) override
    {
        auto *view = new FakeEditorView(pool, index);
        view->setParent(&owner);
        return view;
    }
    QObject owner;
};

// A pool over fake windows with its settings in a scratch folder.
struct PoolFixture {
    PoolFixture();
    QString File(const QString &name) const { return dir.filePath(name); }
    // The fake window of pool slot `index`.
    FakeEditorView *View(int index) const { return dynamic_cast<FakeEditorView *>(pool->Document(index)); }

    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    std::unique_ptr<AppContext> context;
    FakeFactory factory;
    std::unique_ptr<EditorPool> pool;
};

} // namespace kvr::test
