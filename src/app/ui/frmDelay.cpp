#include "app/ui/frmDelay.h"
#include "app/Calibration.h"
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvr {

frmDelay::frmDelay(AppContext &context, QWidget *parent) : QDialog(parent), m_context(context)
{
    setObjectName(QStringLiteral("frmDelay"));
    setWindowTitle(QStringLiteral("Intercharacter delay"));
    auto *layout = new QVBoxLayout(this);
    const bool is6630 = context.settings.computerType.left(4) == QLatin1String("6630");
    layout->addWidget(new QLabel(
        QStringLiteral("Delay between characters sent to the %1, in delay units.\n"
                       "Choose \"default\" to measure this computer again.")
            .arg(is6630 ? QStringLiteral("KVR6630") : QStringLiteral("KVR4410")),
        this));

    m_combo = new QComboBox(this);
    m_combo->setObjectName(QStringLiteral("CmbDelay"));
    m_combo->setEditable(true);
    m_combo->addItem(QStringLiteral("default"));
    const QStringList offered = {QStringLiteral("0"),     QStringLiteral("1000"),  QStringLiteral("2000"),
                                 QStringLiteral("5000"),  QStringLiteral("10000"), QStringLiteral("20000"),
                                 QStringLiteral("50000"), QStringLiteral("100000"), QStringLiteral("200000")};
    m_combo->addItems(offered);
    m_combo->setCurrentText(CurrentFamilyDelay(context.settings));
    m_combo->setValidator(nullptr);
    layout->addWidget(m_combo);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("cmdOK"));
    QPushButton *cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    connect(ok, &QPushButton::clicked, this, &frmDelay::Accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void frmDelay::Accept()
{
    const QString choice = m_combo->currentText().trimmed();
    if (choice != QLatin1String("default")) {
        bool ok = false;
        const qint64 value = choice.toLongLong(&ok);
        if (!ok || value < 0 || choice.size() > 7) {
            m_context.prompts.Message(
                QStringLiteral("The delay must be a whole number from 0 to 9999999, or \"default\"."),
                PromptIcon::Information);
            return;
        }
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ApplyDelayChoice(m_context.settings, choice, m_context.clock);
    QApplication::restoreOverrideCursor();
    m_context.WriteSettings();
    accept();
}

} // namespace kvr
