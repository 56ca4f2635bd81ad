#include "prom/ui/frmReFlash.h"
#include "prom/Reflash.h"
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvr {

namespace {
// How a progress block (character 127) is shown, as in the terminal.
const QChar ProgressBlock(0x2588);
}

frmReFlash::frmReFlash(Reflasher &reflasher, QWidget *parent) : QDialog(parent), m_reflasher(reflasher)
{
    setObjectName(QStringLiteral("frmReFlash"));
    setWindowTitle(QStringLiteral("Re-Flash KVR4410F"));

    auto *info = new QLabel(QStringLiteral(
        "Writes a new program into the flash of a KVR4410F from a PROM programmer file in "
        "Motorola S-record form.\n\nThe board is emptied first (everything compiled on it is lost), "
        "then it is given the receiver #REFLASH.KVR, the whole file is checked, and the image is sent. "
        "The board checks what it received and says whether the flash was written."), this);
    info->setObjectName(QStringLiteral("lblInfo"));
    info->setWordWrap(true);
    m_lblStatus = new QLabel(this);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    m_lblProgress = new QLabel(this);
    m_lblProgress->setObjectName(QStringLiteral("lblProgress"));
    m_lblProgress->setMinimumHeight(fontMetrics().height());
    m_lblVerdict = new QLabel(this);
    m_lblVerdict->setObjectName(QStringLiteral("lblVerdict"));
    m_lblVerdict->setWordWrap(true);

    const auto button = [this](const char *name, const QString &text) {
        auto *b = new QPushButton(text, this);
        b->setObjectName(QString::fromLatin1(name));
        b->setAutoDefault(false);
        return b;
    };
    m_cmdProceed = button("cmdProceed", QStringLiteral("&Proceed"));
    m_cmdCancel = button("cmdCancel", QStringLiteral("Cancel"));
    m_cmdOK = button("cmdOK", QStringLiteral("OK"));
    m_cmdHelp = button("cmdHelp", QStringLiteral("&Help"));
    m_cmdProceed->setDefault(true);
    m_cmdOK->setEnabled(false);
    connect(m_cmdProceed, &QPushButton::clicked, this, &frmReFlash::Proceed);
    connect(m_cmdCancel, &QPushButton::clicked, this, &frmReFlash::reject);
    connect(m_cmdOK, &QPushButton::clicked, this, &frmReFlash::accept);
    connect(m_cmdHelp, &QPushButton::clicked, this, [this] { emit HelpRequested(QStringLiteral("reflash")); });

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton *b : {m_cmdProceed, m_cmdCancel, m_cmdOK, m_cmdHelp})
        buttons->addWidget(b);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(info);
    layout->addWidget(m_lblStatus);
    layout->addWidget(m_lblProgress);
    layout->addWidget(m_lblVerdict);
    layout->addLayout(buttons);
    setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('M')) * 36);

    connect(&reflasher, &Reflasher::StatusText, m_lblStatus, &QLabel::setText);
    connect(&reflasher, &Reflasher::ProgressStep, this, &frmReFlash::AddProgressBlock);
    connect(&reflasher, &Reflasher::VerdictShown, m_lblVerdict, &QLabel::setText);
    connect(&reflasher, &Reflasher::BringForward, this, [this] {
        raise();
        activateWindow();
    });
}

void frmReFlash::AddProgressBlock()
{
    // The bar starts again when it fills the label, as the compiler's does.
    const int capacity = std::max(1, m_lblProgress->width() / std::max(1, fontMetrics().horizontalAdvance(ProgressBlock)));
    m_blocks = m_blocks < capacity ? m_blocks + 1 : 1;
    m_lblProgress->setText(QString(m_blocks, ProgressBlock));
}

void frmReFlash::Proceed()
{
    if (m_running)
        return;
    m_running = true;
    m_blocks = 0;
    m_lblProgress->clear();
    m_lblVerdict->clear();
    m_cmdProceed->setEnabled(false);
    m_cmdCancel->setEnabled(false);
    const ReflashOutcome outcome = m_reflasher.Reflash();
    m_running = false;
    m_cmdCancel->setEnabled(true);
    m_cmdProceed->setEnabled(true);
    if (outcome.end == ReflashEnd::Cancelled)
        return;
    m_cmdOK->setEnabled(true);
    m_cmdOK->setDefault(true);
    m_cmdOK->setFocus();
}

void frmReFlash::reject()
{
    if (!m_running)
        QDialog::reject();
}

} // namespace kvr
