#include "app/ui/BoardChoiceWidget.h"
#include "app/Caption.h"
#include <QButtonGroup>
#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QIntValidator>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kvr {

BoardChoiceWidget::BoardChoiceWidget(const Settings &settings, QWidget *parent) : QWidget(parent)
{
    const BoardChoice current = CurrentBoardChoice(settings);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    auto *typeBox = new QGroupBox(QStringLiteral("KVR computer"), this);
    auto *typeLayout = new QVBoxLayout(typeBox);
    m_types = new QButtonGroup(this);
    for (int i = 0; i < ComputerTypes.size(); ++i) {
        QString label = BoardDescription(ComputerTypes[i]);
        label[0] = label[0].toUpper();
        auto *radio = new QRadioButton(label, typeBox);
        radio->setObjectName(QStringLiteral("optType") + ComputerTypes[i]);
        radio->setChecked(ComputerTypes[i] == current.computerType);
        m_types->addButton(radio, i);
        typeLayout->addWidget(radio);
    }
    if (!m_types->checkedButton())
        m_types->button(0)->setChecked(true);
    layout->addWidget(typeBox);

    auto *linkBox = new QGroupBox(QStringLiteral("Connection"), this);
    auto *linkLayout = new QFormLayout(linkBox);
    m_serial = new QRadioButton(QStringLiteral("Serial port"), linkBox);
    m_serial->setObjectName(QStringLiteral("optSerial"));
    m_port = new QComboBox(linkBox);
    m_port->setObjectName(QStringLiteral("cmbPort"));
    for (int n = 1; n <= 20; ++n) {
        const QString name = QStringLiteral("COM%1").arg(n);
        const QString device = settings.SerialDevice(name);
        const bool present = !device.isEmpty() && QFileInfo::exists(device);
        m_port->addItem(QStringLiteral("%1  (%2%3)").arg(name, device,
                                                         present ? QString() : QStringLiteral(", not present")),
                        n);
    }
    m_port->setCurrentIndex(current.port >= 1 ? current.port - 1 : 0);
    linkLayout->addRow(m_serial, m_port);

    m_remote = new QRadioButton(QStringLiteral("Remote KVR computer (TCP/IP)"), linkBox);
    m_remote->setObjectName(QStringLiteral("optRemote"));
    m_ip = new QLineEdit(current.remoteIp, linkBox);
    m_ip->setObjectName(QStringLiteral("txtIP"));
    m_ip->setMaxLength(15);
    m_tcpPort = new QLineEdit(current.remotePort, linkBox);
    m_tcpPort->setObjectName(QStringLiteral("txtPort"));
    m_tcpPort->setValidator(new QIntValidator(1, 65535, m_tcpPort));
    auto *address = new QWidget(linkBox);
    auto *addressLayout = new QHBoxLayout(address);
    addressLayout->setContentsMargins(0, 0, 0, 0);
    addressLayout->addWidget(m_ip, 3);
    addressLayout->addWidget(m_tcpPort, 1);
    linkLayout->addRow(m_remote, address);
    (current.port == 0 ? m_remote : m_serial)->setChecked(true);
    layout->addWidget(linkBox);

    connect(m_serial, &QRadioButton::toggled, this, &BoardChoiceWidget::UpdateEnabled);
    UpdateEnabled();
}

void BoardChoiceWidget::UpdateEnabled()
{
    const bool serial = m_serial->isChecked();
    m_port->setEnabled(serial);
    m_ip->setEnabled(!serial);
    m_tcpPort->setEnabled(!serial);
}

BoardChoice BoardChoiceWidget::Choice() const
{
    BoardChoice choice;
    choice.computerType = ComputerTypes.value(m_types->checkedId(), ComputerTypes.first());
    choice.port = m_serial->isChecked() ? m_port->currentData().toInt() : 0;
    choice.remoteIp = m_ip->text().trimmed();
    choice.remotePort = m_tcpPort->text().trimmed();
    return choice;
}

} // namespace kvr
