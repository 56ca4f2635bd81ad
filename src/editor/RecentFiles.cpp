#include "editor/RecentFiles.h"
#include "app/IniFile.h"
#include "app/Settings.h"

namespace kvr {

namespace {
const QString Section = QStringLiteral("Recent Files");

QString Key(int i)
{
    return QStringLiteral("RecentFile%1").arg(i);
}
} // namespace

bool IsUnusedEntry(const QString &entry)
{
    return entry.left(8) == NotUsed;
}

QStringList ReadRecentFiles(const QString &iniPath)
{
    IniFile ini;
    ini.Load(iniPath);
    QStringList entries;
    for (int i = 1; i <= RecentFileCount; ++i)
        entries << ini.Value(Section, Key(i), NotUsed);
    return entries;
}

bool WriteRecentFiles(const QString &iniPath, const QString &name)
{
    IniFile ini;
    ini.Load(iniPath);
    for (int i = RecentFileCount - 1; i >= 1; --i) {
        const QString entry = ini.Value(Section, Key(i), NotUsed);
        if (!IsUnusedEntry(entry))
            ini.SetValue(Section, Key(i + 1), entry);
    }
    ini.SetValue(Section, Key(1), name);
    QStringList order;
    for (int i = 1; i <= RecentFileCount; ++i)
        order << Key(i);
    ini.OrderKeys(Section, order);
    return ini.Save(iniPath);
}

} // namespace kvr
