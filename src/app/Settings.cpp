#include "app/Settings.h"
#include "app/IniFile.h"
#include "app/Text.h"
#include <cmath>

namespace kvr {

namespace {

const QString Parameters = QStringLiteral("Parameters");
const QString Colors = QStringLiteral("Colors");
const QString SerialDevices = QStringLiteral("Serial devices");
const QString Tools = QStringLiteral("Tools");

const QPair<const char *, QString Settings::*> ToolKeys[] = {
    {"Programmer command", &Settings::programmerCommand},
    {"Programmer device", &Settings::programmerDevice},
    {"Terminal command", &Settings::terminalCommand},
    {"Website", &Settings::websiteAddress},
    {"Resources", &Settings::resourcesAddress},
    {"Prices", &Settings::pricesAddress},
};

struct ParameterKey {
    const char *readKey;
    const char *writeKey;
    int bufferLength; // longest kept value plus one
    QString Settings::*member;
};

// Table order is the order the file is written in.
const ParameterKey ParameterKeys[] = {
    {"KVR-PC version", nullptr, 5, &Settings::version},
    {"Communications port", nullptr, 6, &Settings::commPort},
    {"KVR computer type", nullptr, 9, &Settings::computerType},
    {"External editor", nullptr, 255, &Settings::externalEditor},
    {"Current .KVR file", nullptr, 255, &Settings::currentFile},
    {"Opening dialogue", nullptr, 4, &Settings::openingDialogue},
    {"Wizard question", nullptr, 4, &Settings::wizardQuestion},
    {"Capture to disk", nullptr, 255, &Settings::captureToDisk},
    {"Quiet, ON or OFF", nullptr, 4, &Settings::quiet},
    {"Quick compile, ON or OFF", nullptr, 4, &Settings::quickCompile},
    {"No compile display, ON or OFF", nullptr, 4, &Settings::noCompileDisplay},
    {"Current Forth words database", nullptr, 255, &Settings::wordsDatabase},
    {"Baud rate", nullptr, 6, &Settings::baudRate},
    {"Intercharacter delay - KVR4410", nullptr, 8, &Settings::delay4410},
    {"Intercharacter delay - KVR6630", nullptr, 8, &Settings::delay6630},
    {"Timeout", nullptr, 8, &Settings::timeout},
    {"Font Size", nullptr, 5, &Settings::fontSize},
    {"Font Name", nullptr, 21, &Settings::fontName},
    // Read under the short name, written under the long one: a bold font
    // written by the program does not come back unless copied by hand.
    {"Font Bold", "Font Bold, ON or OFF", 4, &Settings::fontBold},
    {"Caps Lock, ON or OFF", nullptr, 4, &Settings::capsLock},
    {"Source window TAB spaces", nullptr, 4, &Settings::tabSpaces},
    {"Extra source file search paths", nullptr, 255, &Settings::extraSearchPaths},
    {"Remote KVR computer IP address", nullptr, 16, &Settings::remoteIp},
    {"Remote KVR computer IP port", nullptr, 6, &Settings::remotePort},
};

const int ColorBufferLength = 4;
const int DefaultColors[18] = {0, 0, 0, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 255, 255, 0, 0, 0};

QString WriteKey(const ParameterKey &k)
{
    return QString::fromLatin1(k.writeKey ? k.writeKey : k.readKey);
}

// What the system's profile reader leaves in a buffer of `length` characters.
QString IntoBuffer(const QString &value, int length)
{
    return value.left(length - 1);
}

QString CutAtNul(const QString &value)
{
    const qsizetype nul = value.indexOf(QChar(0));
    return nul < 0 ? value : value.left(nul);
}

int ColorIndex(ColorWindow window, bool foreground)
{
    return static_cast<int>(window) * 6 + (foreground ? 3 : 0);
}

} // namespace

const std::array<QString, 18> &ColorKeys()
{
    static const std::array<QString, 18> keys = [] {
        std::array<QString, 18> k;
        const char *windows[] = {"Emulator", "Editor", "Status box"};
        const char *layers[] = {"background", "foreground"};
        const char *components[] = {"red", "green", "blue"};
        int i = 0;
        for (const char *w : windows)
            for (const char *l : layers)
                for (const char *c : components)
                    k[i++] = QStringLiteral("%1%2%3")
                                 .arg(QString::fromLatin1(w), -11)
                                 .arg(QString::fromLatin1(l))
                                 .arg(QString::fromLatin1(c), 6);
        return k;
    }();
    return keys;
}

QMap<QString, QString> DefaultSerialDevices()
{
    // On-board UARTs first, then USB adapters, then USB modems (CDC ACM).
    QMap<QString, QString> devices;
    for (int n = 1; n <= 20; ++n) {
        QString device;
        if (n <= 4)
            device = QStringLiteral("/dev/ttyS%1").arg(n - 1);
        else if (n <= 12)
            device = QStringLiteral("/dev/ttyUSB%1").arg(n - 5);
        else
            device = QStringLiteral("/dev/ttyACM%1").arg(n - 13);
        devices.insert(QStringLiteral("COM%1").arg(n), device);
    }
    return devices;
}

Settings::Settings()
{
    for (int i = 0; i < 18; ++i)
        colors[i] = QString::number(DefaultColors[i]);
    serialDevices = DefaultSerialDevices();
}

QColor Settings::Color(ColorWindow window, bool foreground) const
{
    const int base = ColorIndex(window, foreground);
    auto component = [&](int i) { return std::clamp(int(Val(colors[base + i])), 0, 255); };
    return QColor(component(0), component(1), component(2));
}

void Settings::SetColor(ColorWindow window, bool foreground, const QColor &color)
{
    const int base = ColorIndex(window, foreground);
    colors[base] = QString::number(color.red());
    colors[base + 1] = QString::number(color.green());
    colors[base + 2] = QString::number(color.blue());
}

QString Settings::SerialDevice(const QString &portName) const
{
    for (auto it = serialDevices.begin(); it != serialDevices.end(); ++it)
        if (it.key().compare(portName, Qt::CaseInsensitive) == 0)
            return it.value();
    return {};
}

void ReadSettings(Settings &settings, const QString &iniPath, const QString &windowsFolder)
{
    const Settings defaults;
    IniFile ini;
    ini.Load(iniPath);
    const QString parameters = Parameters;
    for (const ParameterKey &k : ParameterKeys) {
        QString fallback = defaults.*k.member;
        if (k.member == &Settings::externalEditor)
            fallback = windowsFolder + QStringLiteral("NOTEPAD.EXE");
        const QString raw = ini.Value(parameters, QString::fromLatin1(k.readKey), fallback);
        settings.*k.member = CutAtNul(IntoBuffer(raw, k.bufferLength));
    }
    const auto &keys = ColorKeys();
    for (int i = 0; i < 18; ++i)
        settings.colors[i] = IntoBuffer(ini.Value(Colors, keys[i], defaults.colors[i]), ColorBufferLength);

    settings.serialDevices = DefaultSerialDevices();
    for (const QString &key : ini.Keys(SerialDevices)) {
        const QString device = ini.Value(SerialDevices, key, QString()).trimmed();
        if (!device.isEmpty())
            settings.serialDevices.insert(key.toUpper(), device);
    }
    for (const auto &[key, member] : ToolKeys)
        settings.*member = ini.Value(Tools, QString::fromLatin1(key), QString()).trimmed();
}

bool WriteSettings(const Settings &settings, const QString &iniPath)
{
    IniFile ini;
    ini.Load(iniPath);
    QStringList parameterOrder;
    for (const ParameterKey &k : ParameterKeys) {
        ini.SetValue(Parameters, WriteKey(k), settings.*k.member);
        parameterOrder << WriteKey(k);
    }
    ini.OrderKeys(Parameters, parameterOrder);
    const auto &keys = ColorKeys();
    for (int i = 0; i < 18; ++i)
        ini.SetValue(Colors, keys[i], CutAtNul(settings.colors[i]));
    ini.OrderKeys(Colors, QStringList(keys.begin(), keys.end()));
    for (auto it = settings.serialDevices.begin(); it != settings.serialDevices.end(); ++it)
        ini.SetValue(SerialDevices, it.key(), it.value());
    // Only what was set: a file without tools gains no empty section.
    for (const auto &[key, member] : ToolKeys)
        if (!(settings.*member).isEmpty() || ini.Has(Tools, QString::fromLatin1(key)))
            ini.SetValue(Tools, QString::fromLatin1(key), settings.*member);
    ini.MoveSectionTo(Parameters, 0);
    ini.MoveSectionTo(Colors, 1);
    return ini.Save(iniPath);
}

} // namespace kvr

namespace kvr {

QFont Settings::TextFont(int minimumSize) const
{
    QFont font(fontName, std::max(minimumSize, int(Val(fontSize))));
    // A face this system lacks (the Windows default) falls back to a fixed pitch.
    font.setStyleHint(QFont::TypeWriter);
    font.setBold(fontBold.left(2) == QLatin1String("ON"));
    return font;
}

void Settings::SetTextFont(const QFont &font)
{
    fontName = font.family().left(20);
    fontSize = QString::number(std::max(1, font.pointSize())).left(4);
    fontBold = font.bold() ? QStringLiteral("ON") : QStringLiteral("OFF");
}

} // namespace kvr
