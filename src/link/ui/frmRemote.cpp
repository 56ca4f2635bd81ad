#include "link/ui/frmRemote.h"
#include "link/RemoteAddress.h"
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace kvr {

frmRemote::frmRemote(AppContext &context, LinkController &controller, QWidget *parent)
    : QDialog(parent), m_context(context), m_controller(controller)
{
    setObjectName(QStringLiteral("frmRemote"));
    setWindowTitle(QStringLiteral("Remote KVR computer"));

    m_txtIP = new QLineEdit(NormaliseAddress(context.settings.remoteIp), this);
    m_txtIP->setObjectName(QStringLiteral("txtIP"));
    // Digits and dots only: four numbers of up to three digits.
    m_txtIP->setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("[0-9]{0,3}(\\.[0-9]{0,3}){0,3}")), m_txtIP));
    m_txtPort = new QLineEdit(NormalisePort(context.settings.remotePort), this);
    m_txtPort->setObjectName(QStringLiteral("txtPort"));
    m_txtPort->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,5}")), m_txtPort));
    m_lblStatus = new QLabel(controller.StatusText(), this);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    m_lblStatus->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("Remote KVR computer - not connected  ")));

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("IP &address:"), m_txtIP);
    form->addRow(QStringLiteral("&Port:"), m_txtPort);

    auto *buttons = new QDialogButtonBox(this);
    auto add = [&](const char *name, const QString &text, QDialogButtonBox::ButtonRole role) {
        QPushButton *button = buttons->addButton(text, role);
        button->setObjectName(QString::fromLatin1(name));
        button->setAutoDefault(false);
        return button;
    };
    QPushButton *connectButton = add("cmdConnect", QStringLiteral("&Connect"), QDialogButtonBox::ActionRole);
    QPushButton *disconnectButton = add("cmdDisconnect", QStringLiteral("&Disconnect"), QDialogButtonBox::ActionRole);
    QPushButton *defaultButton = add("cmdDefault", QStringLiteral("De&fault"), QDialogButtonBox::ActionRole);
    QPushButton *cancelButton = add("cmdCancel", QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    connectButton->setDefault(true);
    connect(connectButton, &QPushButton::clicked, this, &frmRemote::Connect);
    connect(disconnectButton, &QPushButton::clicked, this, &frmRemote::Disconnect);
    connect(defaultButton, &QPushButton::clicked, this, &frmRemote::FillDefault);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(&controller, &LinkController::StatusChanged, m_lblStatus, &QLabel::setText);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_lblStatus);
    layout->addWidget(buttons);
}

void frmRemote::Connect()
{
    const QString address = NormaliseAddress(m_txtIP->text());
    const QString port = NormalisePort(m_txtPort->text());
    m_txtIP->setText(address);
    m_txtPort->setText(port);
    setEnabled(false);
    m_controller.ConnectFromDialog(address, port);
    setEnabled(true);
    // Connected: the terminal comes forward and the dialog has done its
    // job; otherwise it stays to show why.
    if (m_controller.IsTcpConnected())
        accept();
}

void frmRemote::Disconnect()
{
    m_controller.DisconnectFromDialog();
    accept();
}

void frmRemote::FillDefault()
{
    m_txtIP->setText(DefaultGatewayAddress(m_context.paths.SettingsFile()));
    m_txtPort->setText(DefaultGatewayPort);
}

} // namespace kvr
