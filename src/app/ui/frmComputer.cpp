#include "app/ui/frmComputer.h"
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvr {

frmComputer::frmComputer(const Settings &settings, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmComputer"));
    setWindowTitle(QStringLiteral("KVR computer"));
    auto *layout = new QVBoxLayout(this);
    m_panel = new BoardChoiceWidget(settings, this);
    layout->addWidget(m_panel);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("cmdOK"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

frmOpening::frmOpening(const Settings &settings, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmOpening"));
    setWindowTitle(QStringLiteral("Welcome to KVR-PC for Windows"));
    auto *layout = new QVBoxLayout(this);
    auto *intro = new QLabel(QStringLiteral("Choose your KVR computer and how it is connected, then "
                                            "connect to it, or open a source file to work on."),
                             this);
    intro->setWordWrap(true);
    layout->addWidget(intro);
    m_panel = new BoardChoiceWidget(settings, this);
    layout->addWidget(m_panel);
    m_showAgain = new QCheckBox(QStringLiteral("Show this dialogue at start-up"), this);
    m_showAgain->setObjectName(QStringLiteral("chkShowAgain"));
    m_showAgain->setChecked(settings.openingDialogue != QLatin1String("OFF"));
    layout->addWidget(m_showAgain);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *connectButton = buttons->addButton(QStringLiteral("&Connect"), QDialogButtonBox::AcceptRole);
    connectButton->setObjectName(QStringLiteral("cmdStart"));
    connectButton->setDefault(true);
    QPushButton *open = buttons->addButton(QStringLiteral("&Open file..."), QDialogButtonBox::ActionRole);
    open->setObjectName(QStringLiteral("cmdOpenFile"));
    QPushButton *skip = buttons->addButton(QStringLiteral("&Skip"), QDialogButtonBox::RejectRole);
    skip->setObjectName(QStringLiteral("cmdCancel"));
    connect(connectButton, &QPushButton::clicked, this, &QDialog::accept);
    connect(open, &QPushButton::clicked, this, [this] { done(OpenFile); });
    connect(skip, &QPushButton::clicked, this, &QDialog::reject);
    layout->addWidget(buttons);
}

bool frmOpening::ShowAgain() const
{
    return m_showAgain->isChecked();
}

} // namespace kvr
