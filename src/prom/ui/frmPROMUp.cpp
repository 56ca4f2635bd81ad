#include "prom/ui/frmPROMUp.h"
#include "app/AppContext.h"
#include "prom/PromUpload.h"
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace kvr {

namespace {

QString ControlName(const char *name, int index)
{
    return QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index);
}

// The current program's name with the image extension, as a first offer.
QString DefaultImageName(const QString &currentFile)
{
    if (currentFile.left(8) == QLatin1String("Not Used") || currentFile.isEmpty())
        return QString();
    const qsizetype dot = currentFile.lastIndexOf(u'.');
    const qsizetype slash = std::max(currentFile.lastIndexOf(u'/'), currentFile.lastIndexOf(u'\\'));
    return (dot > slash ? currentFile.left(dot) : currentFile) + ImageExtension(ImageFormat::SRecord);
}

} // namespace

frmPROMUp::frmPROMUp(AppContext &context, PromUpload &upload, const QString &endOfProgram, QWidget *parent)
    : QDialog(parent), m_context(context), m_upload(upload)
{
    setObjectName(QStringLiteral("frmPROMUp"));
    setWindowTitle(QStringLiteral("Upload from KVR to PROM file"));

    const UploadRange range = DefaultUploadRange(context.settings.computerType, endOfProgram);
    const QString texts[3] = {range.start, range.end, DefaultImageName(context.settings.currentFile)};
    for (int i = 0; i < 3; ++i) {
        m_txtInput[i] = new QLineEdit(texts[i], this);
        m_txtInput[i]->setObjectName(ControlName("txtInput", i));
        m_txtInput[i]->installEventFilter(this);
    }
    for (int i = 0; i < 2; ++i) {
        m_txtInput[i]->setMaxLength(4);
        m_txtInput[i]->setValidator(
            new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9A-Fa-f]{0,4}")), m_txtInput[i]));
    }
    m_optFormat[0] = new QRadioButton(QStringLiteral("&Intel hex (.INT)"), this);
    m_optFormat[1] = new QRadioButton(QStringLiteral("&Motorola S-record (.MOT)"), this);
    for (int i = 0; i < 2; ++i) {
        m_optFormat[i]->setObjectName(ControlName("optFormat", i));
        connect(m_optFormat[i], &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                FormatChanged();
        });
    }
    m_optFormat[1]->setChecked(true);

    m_lblProgress = new QLabel(QStringLiteral("Progress:"), this);
    m_lblProgress->setObjectName(QStringLiteral("lblProgress"));
    m_txtProgress = new QLineEdit(this);
    m_txtProgress->setObjectName(QStringLiteral("txtProgress"));
    m_txtProgress->setReadOnly(true);
    m_txtAddress = new QLineEdit(this);
    m_txtAddress->setObjectName(QStringLiteral("txtAddress"));
    m_txtAddress->setReadOnly(true);
    m_txtAddress->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("MMMMMM")));
    m_lblWait = new QLabel(QStringLiteral("Please wait while the board sends the image."), this);
    m_lblWait->setObjectName(QStringLiteral("lblWait"));
    m_lblComplete = new QLabel(QStringLiteral("Upload complete."), this);
    m_lblComplete->setObjectName(QStringLiteral("lblComplete"));
    m_lblCheck = new QLabel(this);
    m_lblCheck->setObjectName(QStringLiteral("lblCheck"));
    m_lblCheck->setWordWrap(true);

    m_cmdOK = new QPushButton(QStringLiteral("OK"), this);
    m_cmdOK->setObjectName(QStringLiteral("cmdOK"));
    m_cmdOK->setDefault(true);
    m_cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    m_cmdComplete = new QPushButton(QStringLiteral("&Close"), this);
    m_cmdComplete->setObjectName(QStringLiteral("CmdComplete"));
    connect(m_cmdOK, &QPushButton::clicked, this, &frmPROMUp::Ok);
    connect(m_cmdCancel, &QPushButton::clicked, this, &frmPROMUp::reject);
    connect(m_cmdComplete, &QPushButton::clicked, this, &frmPROMUp::accept);

    auto *grid = new QGridLayout;
    auto label = [this](const QString &text, QWidget *buddy) {
        auto *l = new QLabel(text, this);
        l->setBuddy(buddy);
        return l;
    };
    grid->addWidget(label(QStringLiteral("&Start address (hex):"), m_txtInput[0]), 0, 0);
    grid->addWidget(m_txtInput[0], 0, 1);
    grid->addWidget(label(QStringLiteral("&End address (hex):"), m_txtInput[1]), 0, 2);
    grid->addWidget(m_txtInput[1], 0, 3);
    grid->addWidget(label(QStringLiteral("PROM &file:"), m_txtInput[2]), 1, 0);
    grid->addWidget(m_txtInput[2], 1, 1, 1, 3);
    grid->addWidget(m_optFormat[0], 2, 1);
    grid->addWidget(m_optFormat[1], 2, 2, 1, 2);
    grid->addWidget(m_lblProgress, 3, 0);
    grid->addWidget(m_txtProgress, 3, 1, 1, 2);
    grid->addWidget(m_txtAddress, 3, 3);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton *button : {m_cmdOK, m_cmdCancel, m_cmdComplete}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(m_lblWait);
    layout->addWidget(m_lblComplete);
    layout->addWidget(m_lblCheck);
    layout->addLayout(buttons);
    setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('M')) * 40);

    for (QWidget *w : {static_cast<QWidget *>(m_lblProgress), static_cast<QWidget *>(m_txtProgress),
                       static_cast<QWidget *>(m_txtAddress), static_cast<QWidget *>(m_lblWait),
                       static_cast<QWidget *>(m_lblComplete), static_cast<QWidget *>(m_lblCheck),
                       static_cast<QWidget *>(m_cmdComplete)})
        w->setVisible(false);

    connect(&upload, &PromUpload::FileNameChanged, m_txtInput[2], &QLineEdit::setText);
    connect(&upload, &PromUpload::ProgressShown, this, [this](bool shown) {
        m_lblProgress->setVisible(shown);
        m_txtProgress->setVisible(shown);
        m_txtAddress->setVisible(shown);
        m_lblWait->setVisible(shown);
    });
    connect(&upload, &PromUpload::ProgressText, m_txtProgress, &QLineEdit::setText);
    connect(&upload, &PromUpload::AddressShown, m_txtAddress, &QLineEdit::setText);
    connect(&upload, &PromUpload::CompleteButtonShown, m_cmdComplete, &QWidget::show);
    connect(&upload, &PromUpload::CompleteLabelShown, m_lblComplete, &QWidget::show);
    connect(&upload, &PromUpload::CheckShown, this, [this](const QString &summary) {
        m_lblCheck->setText(summary);
        m_lblCheck->show();
    });
    connect(&upload, &PromUpload::BringForward, this, [this] {
        raise();
        activateWindow();
    });
}

ImageFormat frmPROMUp::Format() const
{
    return m_optFormat[0]->isChecked() ? ImageFormat::IntelHex : ImageFormat::SRecord;
}

void frmPROMUp::FormatChanged()
{
    m_txtInput[2]->setText(SwapImageExtension(m_txtInput[2]->text(), Format()));
}

void frmPROMUp::Ok()
{
    if (m_running)
        return;
    const UploadRequest request =
        ReadUploadRequest(m_txtInput[0]->text(), m_txtInput[1]->text(), m_txtInput[2]->text());
    if (!request.problem.isEmpty()) {
        m_context.prompts.Message(request.problem, PromptIcon::Information);
        return;
    }
    m_running = true;
    m_lblComplete->hide();
    m_lblCheck->hide();
    for (QWidget *w : {static_cast<QWidget *>(m_cmdOK), static_cast<QWidget *>(m_cmdCancel),
                       static_cast<QWidget *>(m_optFormat[0]), static_cast<QWidget *>(m_optFormat[1]),
                       static_cast<QWidget *>(m_txtInput[0]), static_cast<QWidget *>(m_txtInput[1]),
                       static_cast<QWidget *>(m_txtInput[2])})
        w->setEnabled(false);
    const UploadOutcome outcome = m_upload.Run(request.start, request.end, m_txtInput[2]->text().trimmed(), Format());
    m_running = false;
    if (outcome.end == UploadEnd::ProgramMissing) {
        QDialog::reject();
        return;
    }
    m_cmdComplete->show();
    m_cmdComplete->setDefault(true);
    m_cmdComplete->setFocus();
}

void frmPROMUp::reject()
{
    // The upload runs inside cmdOK: the dialog stays until it is over.
    if (!m_running)
        QDialog::reject();
}

bool frmPROMUp::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_F1) {
        emit HelpRequested(QStringLiteral("promfileupload"));
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace kvr
