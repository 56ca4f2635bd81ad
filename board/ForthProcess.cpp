#include "ForthProcess.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <csignal>
#include <cstdio>
#include <sys/prctl.h>
#include <unistd.h>

namespace kvr::board {

ForthProcess::ForthProcess(const QString &gforth, const QString &boardType, QObject *parent)
    : QObject(parent), m_gforth(gforth), m_boardType(boardType)
{
}

ForthProcess::~ForthProcess()
{
    Stop();
}

QString ForthProcess::FindGforth(const QString &given)
{
    if (!given.isEmpty())
        return QFileInfo(given).isExecutable() ? given : QString();
    return QStandardPaths::findExecutable(QStringLiteral("gforth"));
}

bool ForthProcess::Unpack(QString &error)
{
    if (!m_personality.isValid()) {
        error = QStringLiteral("cannot make a temporary folder for the board personality");
        return false;
    }
    // The personality is built into the program so it always matches it.
    QDirIterator files(QStringLiteral(":/board/forth"));
    while (files.hasNext()) {
        const QString source = files.next();
        const QString target = m_personality.filePath(QFileInfo(source).fileName());
        QFile::remove(target);
        if (!QFile::copy(source, target)) {
            error = QStringLiteral("cannot unpack the board personality into ") + m_personality.path();
            return false;
        }
    }
    return true;
}

QProcessEnvironment ForthProcess::Environment() const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("KVR_BOARD_TYPE"), m_boardType);
    for (auto it = m_variables.cbegin(); it != m_variables.cend(); ++it)
        env.insert(it.key(), it.value());
    return env;
}

QStringList ForthProcess::Arguments() const
{
    return {QStringLiteral("-m"), QStringLiteral("4M"), m_personality.filePath(QStringLiteral("board.fs"))};
}

bool ForthProcess::Start(QString &error)
{
    if (!Unpack(error))
        return false;
    Launch();
    if (!m_process->waitForStarted(5000)) {
        error = QStringLiteral("cannot start %1: %2").arg(m_gforth, m_process->errorString());
        return false;
    }
    return true;
}

bool ForthProcess::ListWords(QByteArray &words, QString &error)
{
    if (!Unpack(error))
        return false;
    QProcess lister;
    lister.setProgram(m_gforth);
    lister.setArguments(Arguments());
    lister.setWorkingDirectory(m_personality.path());
    QProcessEnvironment env = Environment();
    env.insert(QStringLiteral("KVR_LIST_WORDS"), QStringLiteral("1"));
    lister.setProcessEnvironment(env);
    lister.start();
    if (!lister.waitForFinished(30000) || lister.exitStatus() != QProcess::NormalExit || lister.exitCode() != 0) {
        error = QStringLiteral("the board personality did not list its words on %1: %2")
                    .arg(m_gforth, QString::fromLocal8Bit(lister.readAllStandardError()).trimmed());
        return false;
    }
    words = lister.readAllStandardOutput();
    return true;
}

void ForthProcess::Launch()
{
    m_process = new QProcess(this);
    m_process->setProgram(m_gforth);
    m_process->setArguments(Arguments());
    m_process->setWorkingDirectory(m_personality.path());
    m_process->setProcessEnvironment(Environment());
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    connect(m_process, &QProcess::readyReadStandardError, this, &ForthProcess::OnStderr);
    // gforth must not outlive the bridge, however the bridge ends.
    m_process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    connect(m_process, &QProcess::readyReadStandardOutput, this, [this] {
        emit Output(m_process->readAllStandardOutput());
    });
    connect(m_process, &QProcess::finished, this, &ForthProcess::OnFinished);
    connect(m_process, &QProcess::started, this, [this] {
        if (!m_pending.isEmpty()) {
            m_process->write(m_pending);
            m_pending.clear();
        }
    });
    m_process->start();
}

void ForthProcess::OnStderr()
{
    // Status bytes from the personality; anything else is gforth's own word.
    QByteArray text;
    for (char byte : m_process->readAllStandardError()) {
        if (byte == '\x01' || byte == '\x02') {
            if (!m_up) {
                // The sign-on was written before this; let it go first.
                m_up = true;
                m_process->setReadChannel(QProcess::StandardOutput);
                m_process->waitForReadyRead(0);
                emit Output(m_process->readAllStandardOutput());
                emit Up();
            }
            emit ReadingLine(byte == '\x02');
        } else if (byte == '\x03') {
            emit ProgramTakesKeys();
        } else
            text += byte;
    }
    if (!text.isEmpty()) {
        std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
        std::fflush(stderr);
    }
}

void ForthProcess::OnFinished()
{
    QProcess *ended = m_process;
    if (m_stopping || ended == nullptr)
        return;
    emit Output(ended->readAllStandardOutput());
    OnStderr();
    if (!m_up) {
        emit Failed(QStringLiteral("the board personality did not start on %1 (exit code %2)")
                        .arg(m_gforth).arg(ended->exitCode()));
        return;
    }
    m_up = false;
    if (ended->exitStatus() != QProcess::NormalExit || ended->exitCode() != 42)
        qWarning("kvr-board: the Forth system ended (exit code %d); restarting it", ended->exitCode());
    ended->deleteLater();
    Launch();
    emit Restarted();
}

void ForthProcess::Stop()
{
    m_stopping = true;
    if (m_process == nullptr)
        return;
    m_process->disconnect(this);
    if (m_process->state() != QProcess::NotRunning) {
        m_process->closeWriteChannel();
        m_process->terminate();
        if (!m_process->waitForFinished(1000)) {
            m_process->kill();
            m_process->waitForFinished(1000);
        }
    }
    delete m_process;
    m_process = nullptr;
}

void ForthProcess::Write(const QByteArray &bytes)
{
    if (m_process == nullptr || bytes.isEmpty())
        return;
    if (m_process->state() == QProcess::Running)
        m_process->write(bytes);
    else
        m_pending += bytes;
}

void ForthProcess::Interrupt()
{
    if (m_process != nullptr && m_process->state() == QProcess::Running)
        ::kill(static_cast<pid_t>(m_process->processId()), SIGINT);
}

}  // namespace kvr::board
