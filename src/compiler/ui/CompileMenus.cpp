#include "compiler/ui/CompileMenus.h"
#include "app/AppContext.h"
#include "app/IniFile.h"
#include "compiler/CompileDriver.h"
#include "compiler/SearchPaths.h"
#include "editor/EditorHost.h"
#include <QAction>
#include <QMenu>
#include <QWidget>

namespace kvr {

namespace {
QString ArrayName(const QString &name, int index)
{
    return name + QLatin1Char('(') + QString::number(index) + QLatin1Char(')');
}
} // namespace

CompileMenus::CompileMenus(AppContext &context, CompileDriver &driver, EditorHost *editor, QObject *parent)
    : QObject(parent), m_context(context), m_driver(driver)
{
    SetEditorHost(editor);
    connect(&driver, &CompileDriver::QuickCompileChanged, this,
            [this](bool on) { SetChecks(QStringLiteral("mnuCQuick"), on); });
    connect(&driver, &CompileDriver::NoCompileDisplayChanged, this,
            [this](bool on) { SetChecks(QStringLiteral("mnuCNoDisplay"), on); });
    // A "QUICK " line in a source file switches both settings too.
    connect(&context, &AppContext::SettingsWritten, this, [this] {
        const Settings &s = m_context.settings;
        SetChecks(QStringLiteral("mnuCQuick"), s.IsOn(s.quickCompile));
        SetChecks(QStringLiteral("mnuCNoDisplay"), s.IsOn(s.noCompileDisplay));
        RefreshRecentFiles();
    });
}

void CompileMenus::SetEditorHost(EditorHost *editor)
{
    if (editor)
        connect(editor, &EditorHost::EditorCreated, this, &CompileMenus::Install, Qt::UniqueConnection);
}

QAction *CompileMenus::AddItem(QMenu *menu, QWidget *window, const QString &name, const QString &caption)
{
    QAction *action = menu->addAction(caption);
    action->setObjectName(name);
    // Shortcuts belong to the window that has the focus, not to every
    // editor window of the frame at once.
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    window->addAction(action);
    return action;
}

void CompileMenus::Install(int index, QObject *object)
{
    auto *window = qobject_cast<QWidget *>(object);
    if (!window)
        return;
    m_windows.insert(index, window);
    if (auto *menu = window->findChild<QMenu *>(QStringLiteral("mnuCompile")); menu && menu->isEmpty()) {
        const Settings &s = m_context.settings;
        QAction *item = AddItem(menu, window, QStringLiteral("mnuCThisWindow"), QStringLiteral("&This window"));
        item->setShortcut(QKeySequence(Qt::Key_F8));
        connect(item, &QAction::triggered, this, [this, index] { m_driver.CompileThisWindow(index); });
        item = AddItem(menu, window, QStringLiteral("mnuCSelected"), QStringLiteral("&Selected Text"));
        item->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F8));
        connect(item, &QAction::triggered, this, [this, index] { m_driver.CompileSelected(index); });
        item = AddItem(menu, window, QStringLiteral("mnuCLast"), QStringLiteral("From &Last definition"));
        item->setShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F8));
        connect(item, &QAction::triggered, this, [this, index] { m_driver.CompileFromLastDefinition(index); });
        item = AddItem(menu, window, QStringLiteral("mnuCContinue"), QStringLiteral("C&ontinue compile"));
        item->setShortcut(QKeySequence(Qt::Key_F9));
        connect(item, &QAction::triggered, this, [this] { m_driver.ContinueLastCompile(); });
        menu->addSeparator();
        item = AddItem(menu, window, QStringLiteral("mnuCQuick"), QStringLiteral("&Quick compile"));
        item->setCheckable(true);
        item->setChecked(s.IsOn(s.quickCompile));
        connect(item, &QAction::triggered, this, [this](bool checked) { m_driver.ToggleQuickCompile(!checked); });
        item = AddItem(menu, window, QStringLiteral("mnuCNoDisplay"), QStringLiteral("&No compile display"));
        item->setCheckable(true);
        item->setChecked(s.IsOn(s.noCompileDisplay));
        connect(item, &QAction::triggered, this,
                [this](bool checked) { m_driver.ToggleNoCompileDisplay(!checked); });
        QAction *separator = menu->addSeparator();
        separator->setObjectName(ArrayName(QStringLiteral("mnuCRecentFile"), 0));
        separator->setVisible(false);
        for (int i = 1; i <= RecentFileCount; ++i) {
            item = AddItem(menu, window, ArrayName(QStringLiteral("mnuCRecentFile"), i), QString());
            item->setVisible(false);
            connect(item, &QAction::triggered, this,
                    [this, index, item] { m_driver.CompileRecentFile(index, item->data().toString()); });
        }
        connect(menu, &QMenu::aboutToShow, this, &CompileMenus::RefreshRecentFiles);
    }

    // The source paths items of the window's Options menu.
    QMenu *paths = window->findChild<QMenu *>(QStringLiteral("mnuOPath"));
    if (!paths) {
        if (auto *options = window->findChild<QMenu *>(QStringLiteral("mnuOptions"))) {
            paths = options->addMenu(QStringLiteral("Source file &Paths"));
            paths->setObjectName(QStringLiteral("mnuOPath"));
        }
    }
    if (paths && !paths->findChild<QAction *>(QStringLiteral("mnuOPAdd"))) {
        QAction *add = paths->addAction(QStringLiteral("&Add or display paths"));
        add->setObjectName(QStringLiteral("mnuOPAdd"));
        add->setParent(paths);
        connect(add, &QAction::triggered, this, [this] { AddOrDisplayPaths(m_context); });
        QAction *reset = paths->addAction(QStringLiteral("Set &Default paths"));
        reset->setObjectName(QStringLiteral("mnuOPDefault"));
        reset->setParent(paths);
        connect(reset, &QAction::triggered, this, [this] { SetDefaultPaths(m_context); });
    }
    RefreshRecentFiles();
}

void CompileMenus::SetChecks(const QString &name, bool on)
{
    for (const QPointer<QWidget> &window : std::as_const(m_windows))
        if (window)
            if (auto *item = window->findChild<QAction *>(name))
                item->setChecked(on);
}

QStringList CompileMenus::RecentFiles() const
{
    IniFile ini;
    ini.Load(m_context.paths.SettingsFile());
    QStringList files;
    for (int i = 1; i <= RecentFileCount; ++i)
        files.append(ini.Value(QStringLiteral("Recent Files"), QStringLiteral("RecentFile%1").arg(i),
                               NotUsed));
    return files;
}

void CompileMenus::RefreshRecentFiles()
{
    const QStringList files = RecentFiles();
    for (const QPointer<QWidget> &window : std::as_const(m_windows)) {
        if (!window)
            continue;
        bool any = false;
        for (int i = 1; i <= RecentFileCount; ++i) {
            QAction *item = window->findChild<QAction *>(ArrayName(QStringLiteral("mnuCRecentFile"), i));
            if (!item)
                continue;
            const QString &file = files.at(i - 1);
            const bool used = file.left(8) != NotUsed;
            QString caption = used ? file : QString();
            item->setText(caption.replace(QLatin1Char('&'), QLatin1String("&&")));
            item->setData(used ? file : QString());
            item->setVisible(used);
            any = any || used;
        }
        if (QAction *separator = window->findChild<QAction *>(ArrayName(QStringLiteral("mnuCRecentFile"), 0)))
            separator->setVisible(any);
    }
}

} // namespace kvr
