#include "prom/ui/frmPROMDown.h"
#include "app/AppContext.h"
#include "help/ExternalTools.h"
#include "prom/ProgrammerDownload.h"
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvr {

namespace {
const QString ExampleCommand = QStringLiteral("minipro -p {device} -w {file}");
}

frmPROMDown::frmPROMDown(AppContext &context, QWidget *parent)
    : QDialog(parent), m_context(context), m_download(new ProgrammerDownload(this))
{
    setObjectName(QStringLiteral("frmPROMDown"));
    setWindowTitle(QStringLiteral("Download to programmer"));
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    auto *fileRow = new QHBoxLayout;
    m_file = new QLineEdit(this);
    m_file->setObjectName(QStringLiteral("txtFile"));
    auto *browse = new QPushButton(QStringLiteral("&Browse..."), this);
    browse->setObjectName(QStringLiteral("cmdBrowse"));
    fileRow->addWidget(m_file, 1);
    fileRow->addWidget(browse);
    form->addRow(QStringLiteral("PROM &image file:"), fileRow);
    m_device = new QLineEdit(context.settings.programmerDevice, this);
    m_device->setObjectName(QStringLiteral("txtDevice"));
    m_device->setPlaceholderText(QStringLiteral("for example AT28C256"));
    form->addRow(QStringLiteral("PROM &device:"), m_device);
    m_command = new QLineEdit(context.settings.programmerCommand.isEmpty() ? ExampleCommand
                                                                           : context.settings.programmerCommand,
                              this);
    m_command->setObjectName(QStringLiteral("txtCommand"));
    m_command->setToolTip(QStringLiteral("{file} stands for the image file, {device} for the PROM device"));
    form->addRow(QStringLiteral("Programmer &command:"), m_command);
    layout->addLayout(form);
    m_check = new QLabel(this);
    m_check->setObjectName(QStringLiteral("lblCheck"));
    m_check->setWordWrap(true);
    layout->addWidget(m_check);
    m_output = new QPlainTextEdit(this);
    m_output->setObjectName(QStringLiteral("txtOutput"));
    m_output->setReadOnly(true);
    m_output->setFont(context.settings.TextFont());
    layout->addWidget(m_output, 1);
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    layout->addWidget(m_status);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    m_run = new QPushButton(QStringLiteral("&Run"), this);
    m_run->setObjectName(QStringLiteral("cmdRun"));
    m_run->setDefault(true);
    m_cancel = new QPushButton(QStringLiteral("Close"), this);
    m_cancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addWidget(m_run);
    buttons->addWidget(m_cancel);
    layout->addLayout(buttons);

    connect(browse, &QPushButton::clicked, this, &frmPROMDown::ChooseFile);
    connect(m_run, &QPushButton::clicked, this, &frmPROMDown::Run);
    connect(m_cancel, &QPushButton::clicked, this, &frmPROMDown::reject);
    connect(m_download, &ProgrammerDownload::Output, this, [this](const QString &text) {
        m_output->moveCursor(QTextCursor::End);
        m_output->insertPlainText(text);
        m_output->ensureCursorVisible();
    });
    connect(m_download, &ProgrammerDownload::Ended, this, [this](bool ok, const QString &verdict) {
        m_status->setText(verdict);
        SetRunning(false);
        if (!ok)
            m_context.prompts.Message(verdict, PromptIcon::Exclamation);
    });
    resize(640, 440);
}

void frmPROMDown::ChooseFile()
{
    const QString file = m_context.prompts.OpenFileName(
        QStringLiteral("PROM image file to download to the programmer"),
        QStringLiteral("PROM image files (*.mot *.int *.MOT *.INT);;All files (*)"), m_file->text());
    if (!file.isEmpty())
        m_file->setText(file);
}

bool frmPROMDown::Run()
{
    if (m_download->IsRunning())
        return false;
    const QString file = m_file->text().trimmed();
    if (file.isEmpty()) {
        ChooseFile();
        if (m_file->text().trimmed().isEmpty())
            return false;
        return Run();
    }
    const ProgrammerImage image = CheckProgrammerImage(file);
    m_check->setText(image.Summary());
    if (!image.check.ok) {
        m_context.prompts.Message(QStringLiteral("The file ") + file
                                      + QStringLiteral(" is not sent to the programmer.") + QChar(10)
                                      + image.Summary(),
                                  PromptIcon::Exclamation);
        return false;
    }
    const QStringList commandLine =
        ProgrammerCommandLine(m_command->text(), QFileInfo(file).absoluteFilePath(), m_device->text().trimmed());
    if (commandLine.isEmpty()) {
        m_context.prompts.Message(QStringLiteral("Give the programmer's command line first."), PromptIcon::Information);
        return false;
    }
    const QString shown = ShownCommandLine(commandLine);
    if (m_context.prompts.Message(QStringLiteral("Run this programmer command?") + QChar(10) + QChar(10) + shown,
                                  PromptIcon::Question, PromptButtons::OkCancel)
        != PromptAnswer::Ok)
        return false;
    // Kept only once the user has stood by it.
    m_context.settings.programmerCommand = m_command->text().trimmed();
    m_context.settings.programmerDevice = m_device->text().trimmed();
    m_context.WriteSettings();
    m_output->clear();
    m_output->appendPlainText(QStringLiteral("$ ") + shown);
    m_status->setText(QStringLiteral("Programmer running ..."));
    SetRunning(true);
    m_download->Start(commandLine);
    return true;
}

void frmPROMDown::SetRunning(bool running)
{
    m_run->setEnabled(!running);
    m_cancel->setText(running ? QStringLiteral("Cancel") : QStringLiteral("Close"));
}

void frmPROMDown::reject()
{
    // Cancel (or Escape) stops a running programmer; the dialog stays to show how it ended.
    if (m_download->IsRunning()) {
        m_download->Cancel();
        return;
    }
    QDialog::reject();
}

} // namespace kvr
