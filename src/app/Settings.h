#pragma once
// The program-wide settings record, mirrored key by key in KVR-PC.INI.
// Every member is text: numbers and switches are converted where used.
#include <QColor>
#include <QFont>
#include <QMap>
#include <QString>
#include <array>

namespace kvr {

inline const QString NotUsed = QStringLiteral("Not Used");

enum class ColorWindow { Emulator = 0, Editor = 1, StatusBox = 2 };

struct Settings {
    QString version = QStringLiteral("0.00");
    QString commPort = QStringLiteral("COM1");
    QString computerType = QStringLiteral("4410ANS");
    QString externalEditor;
    QString currentFile = NotUsed;
    QString openingDialogue = QStringLiteral("ON");
    QString wizardQuestion = QStringLiteral("ON");
    QString captureToDisk = NotUsed;
    QString quiet = QStringLiteral("OFF");
    QString quickCompile = QStringLiteral("OFF");
    QString noCompileDisplay = QStringLiteral("OFF");
    QString wordsDatabase = NotUsed;
    QString baudRate = QStringLiteral("9600");
    QString delay4410 = QStringLiteral("-1");
    QString delay6630 = QStringLiteral("-1");
    QString timeout = QStringLiteral("10000");
    QString fontSize = QStringLiteral("10");
    QString fontName = QStringLiteral("Courier New");
    QString fontBold = QStringLiteral("OFF");
    QString capsLock = QStringLiteral("ON");
    QString tabSpaces = QStringLiteral("0");
    QString extraSearchPaths;
    QString remoteIp = QStringLiteral("255.255.255.255");
    QString remotePort = QStringLiteral("4000");
    // Eighteen colour components in the order of the Colors section:
    // window (Emulator, Editor, Status box) x (background, foreground) x (red, green, blue).
    std::array<QString, 18> colors{};
    // COMn -> device path.
    QMap<QString, QString> serialDevices;
    // Section Tools: outside programs and web addresses, empty when not set.
    QString programmerCommand;
    QString programmerDevice;
    QString terminalCommand;
    QString websiteAddress;
    QString resourcesAddress;
    QString pricesAddress;

    Settings();

    QColor Color(ColorWindow window, bool foreground) const;
    void SetColor(ColorWindow window, bool foreground, const QColor &color);
    // The font of the text windows (editor and terminal), at least `minimumSize` points.
    QFont TextFont(int minimumSize = 1) const;
    void SetTextFont(const QFont &font);

    // "COM1" -> the device path bound to it (empty when unbound).
    QString SerialDevice(const QString &portName) const;

    bool IsTcpMode() const { return commPort == QLatin1String("COM0"); }
    bool IsOn(const QString &value) const { return value.left(3) == QLatin1String("ON"); }
};

// Key names and defaults of the Colors section, in file order.
const std::array<QString, 18> &ColorKeys();
// Default COMn -> device bindings.
QMap<QString, QString> DefaultSerialDevices();

// Fills `settings` from the file: missing file or keys give the defaults,
// values are cut to their kept length and at a NUL character.
void ReadSettings(Settings &settings, const QString &iniPath, const QString &windowsFolder);
// Writes every key back in table order, keeping the file's other sections.
// False when the file could not be written (the old one is left whole).
bool WriteSettings(const Settings &settings, const QString &iniPath);

} // namespace kvr
