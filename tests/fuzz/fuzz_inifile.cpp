// Any settings file: read, changed, written and read again; what was set
// reads back.
#include "FuzzInput.h"
#include "app/IniFile.h"

using namespace kvr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    IniFile ini;
    ini.Parse(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const QStringList sections = ini.Sections();
    for (const QString &section : sections) {
        const QStringList keys = ini.Keys(section);
        for (const QString &key : keys)
            ini.Value(section, key, QString());
        ini.OrderKeys(section, QStringList(keys.crbegin(), keys.crend()));
    }
    if (!sections.isEmpty())
        ini.MoveSectionTo(sections.last(), 0);
    ini.SetValue(QStringLiteral("Fuzz"), QStringLiteral("Key"), QStringLiteral("1"));

    IniFile again;
    again.Parse(ini.Bytes());
    fuzz::Require(again.Value(QStringLiteral("Fuzz"), QStringLiteral("Key"), QString()) == QLatin1String("1"),
                  "a value set reads back");
    if (!sections.isEmpty())
        ini.RemoveSection(sections.first());
    return 0;
}
