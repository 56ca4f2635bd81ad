#include "app/Migration.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include <QFile>
#include <QRegularExpression>
#include <cmath>

namespace kvr {

namespace {

QString Field(const QStringList &lines, int lineNumber, int width)
{
    return RTrim(Left(lines.at(lineNumber - 1), width)).toUpper();
}

QString PathOrNotUsed(const QString &value)
{
    return value.isEmpty() ? NotUsed : value;
}

// The old delay count becomes the KVR4410 delay by x * 0.25 - 23 (whole
// part); the KVR6630 delay keeps the tenfold ratio of the calibration,
// expressed as x * 660 / 66. A negative result is stored as 0, as the
// calibration does.
void ConvertLegacyDelay(Settings &settings, const QString &line)
{
    const double scaled = Val(line) * 0.25 - 23;
    const qint64 delay4410 = std::max<qint64>(0, static_cast<qint64>(std::floor(scaled)));
    const qint64 delay6630 = delay4410 * 660 / 66;
    settings.delay4410 = QString::number(delay4410);
    settings.delay6630 = QString::number(delay6630);
}

} // namespace

bool ReadLegacyConfig(Settings &settings, const QString &folder, const QString &windowsFolder)
{
    QFile file(ResolvePath(folder + QStringLiteral("KVR.CFG")));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QString text = QString::fromLatin1(file.readAll());
    QStringList lines = text.split(QRegularExpression(QStringLiteral("\r\n|\n|\r")));
    if (!lines.isEmpty() && lines.last().isEmpty() && text.endsWith(QLatin1Char('\n')))
        lines.removeLast();
    if (lines.size() < 20)
        return false;

    settings.version = Field(lines, 1, 4);
    settings.commPort = Field(lines, 2, 4);
    const QString model = Field(lines, 4, 7);
    if (model == QLatin1String("6630"))
        settings.computerType = QStringLiteral("6630Fig");
    else if (model == QLatin1String("ANY"))
        settings.computerType = QStringLiteral("Terminal");
    else
        settings.computerType = QStringLiteral("4410ANS");
    QString editor = Field(lines, 5, 40);
    if (!editor.contains(QLatin1Char('.')))
        editor += QStringLiteral(".COM");
    settings.externalEditor = windowsFolder + editor;
    settings.currentFile = PathOrNotUsed(Field(lines, 6, 40));
    settings.openingDialogue = Field(lines, 7, 4) == QLatin1String("OMIT") ? QStringLiteral("OFF")
                                                                          : QStringLiteral("ON");
    settings.captureToDisk = PathOrNotUsed(Field(lines, 8, 40));
    settings.baudRate = Field(lines, 9, 40);
    ConvertLegacyDelay(settings, Field(lines, 18, 40));
    // The old file held Quiet in the opposite sense.
    settings.quiet = Field(lines, 19, 3) == QLatin1String("ON") ? QStringLiteral("OFF")
                                                               : QStringLiteral("ON");
    const QString quick = Field(lines, 20, 3) == QLatin1String("ON") ? QStringLiteral("ON")
                                                                    : QStringLiteral("OFF");
    settings.quickCompile = quick;
    settings.noCompileDisplay = quick;

    const double version = Val(settings.version);
    if (version < 1.629) {
        settings.quiet = QStringLiteral("OFF");
        settings.quickCompile = QStringLiteral("OFF");
    }
    if (settings.captureToDisk == QLatin1String("CAPTURE.DEF") && version < 1.849)
        settings.captureToDisk = NotUsed;
    return true;
}

void MigrateSettings(Settings &settings, const MigrationInput &input)
{
    if ((settings.delay4410 == QLatin1String("-1") || settings.delay6630 == QLatin1String("-1"))
        && input.calibrate)
        input.calibrate(settings);
    const double version = Val(settings.version);
    if (version < 3.0)
        settings.timeout = QStringLiteral("10000");
    if (version < 1.629) {
        settings.quiet = QStringLiteral("OFF");
        settings.quickCompile = QStringLiteral("OFF");
    }
    if (version == 0)
        ReadLegacyConfig(settings, input.legacyFolder, input.windowsFolder);
    settings.version = QStringLiteral("3.20");
    if (!input.commandLineFile.isEmpty())
        settings.currentFile = input.commandLineFile.toUpper();
}

} // namespace kvr
