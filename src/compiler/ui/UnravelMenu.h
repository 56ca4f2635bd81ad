#pragma once
// "Unravel INCLUDEs" (mnuFUnravel) in the File menu of every editor window.
#include <QObject>

namespace kvr {

class AppContext;
class EditorPool;

class UnravelMenu : public QObject {
    Q_OBJECT
public:
    UnravelMenu(AppContext &context, EditorPool &pool, QObject *parent = nullptr);

    // Adds the item to editor window `index` (done for every EditorCreated).
    void Install(int index, QObject *window);
    // The command of editor window `index`.
    void Unravel(int index);

private:
    AppContext &m_context;
    EditorPool &m_pool;
};

} // namespace kvr
