#include "prom/ProgrammerDownload.h"
#include "app/FilePaths.h"
#include <QFile>
#include <QFileInfo>

namespace kvr {

namespace {

int FirstDataAddress(const QByteArray &text, ImageFormat format)
{
    for (QByteArray line : text.split('\n')) {
        line = line.trimmed();
        bool ok = false;
        if (format == ImageFormat::SRecord && line.startsWith("S1") && line.size() >= 8) {
            const int address = line.mid(4, 4).toInt(&ok, 16);
            if (ok)
                return address;
        }
        if (format == ImageFormat::IntelHex && line.startsWith(':') && line.size() >= 9 && line.mid(7, 2) == "00") {
            const int address = line.mid(3, 4).toInt(&ok, 16);
            if (ok)
                return address;
        }
    }
    return 0;
}

} // namespace

ProgrammerImage CheckProgrammerImage(const QString &path)
{
    ProgrammerImage image;
    QFile file(ResolvePath(path));
    if (!file.open(QIODevice::ReadOnly)) {
        image.check.fault = file.errorString();
        return image;
    }
    const QByteArray text = file.readAll();
    const QString suffix = QFileInfo(path).suffix().toUpper();
    ImageFormat format = ImageFormat::SRecord;
    if (suffix == QLatin1String("INT") || (suffix != QLatin1String("MOT") && text.trimmed().startsWith(':')))
        format = ImageFormat::IntelHex;
    image.start = FirstDataAddress(text, format);
    // The first pass counts the bytes; the second checks they end there.
    const ImageCheck counted = CheckImage(text, format, image.start, 0);
    if (counted.badLine > 0 || counted.bytes == 0) {
        image.check = counted;
        image.check.ok = false;
        if (counted.badLine == 0)
            image.check.fault = QStringLiteral("no data records");
    } else {
        image.check = CheckImage(text, format, image.start, counted.bytes);
    }
    return image;
}

ProgrammerDownload::ProgrammerDownload(QObject *parent) : QObject(parent) {}

ProgrammerDownload::~ProgrammerDownload()
{
    if (IsRunning()) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(3000);
    }
}

bool ProgrammerDownload::IsRunning() const
{
    return m_process && m_process->state() != QProcess::NotRunning;
}

bool ProgrammerDownload::Start(const QStringList &commandLine)
{
    if (IsRunning() || commandLine.isEmpty())
        return false;
    delete m_process;
    m_process = new QProcess(this);
    m_cancelled = false;
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    connect(m_process, &QProcess::readyRead, this,
            [this] { emit Output(QString::fromLocal8Bit(m_process->readAll())); });
    connect(m_process, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        const QString rest = QString::fromLocal8Bit(m_process->readAll());
        if (!rest.isEmpty())
            emit Output(rest);
        if (m_cancelled)
            emit Ended(false, QStringLiteral("Programmer stopped: cancelled."));
        else if (status == QProcess::CrashExit)
            emit Ended(false, QStringLiteral("Programmer failed: it ended abnormally."));
        else if (code != 0)
            emit Ended(false, QStringLiteral("Programmer failed: exit status %1.").arg(code));
        else
            emit Ended(true, QStringLiteral("Programmer finished: exit status 0."));
    });
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            emit Ended(false, QStringLiteral("Programmer could not be started: ") + m_process->errorString());
    });
    m_process->start(commandLine.first(), commandLine.mid(1));
    return true;
}

void ProgrammerDownload::Cancel()
{
    if (!IsRunning())
        return;
    m_cancelled = true;
    m_process->kill();
}

} // namespace kvr
