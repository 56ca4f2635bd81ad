#pragma once
// Board type and connection in one panel, shared by the computer dialog and
// the opening dialogue.
#include "app/BoardChoice.h"
#include <QWidget>

class QButtonGroup;
class QComboBox;
class QLineEdit;
class QRadioButton;

namespace kvr {

class BoardChoiceWidget : public QWidget {
    Q_OBJECT
public:
    BoardChoiceWidget(const Settings &settings, QWidget *parent = nullptr);
    BoardChoice Choice() const;

private:
    void UpdateEnabled();
    QButtonGroup *m_types;
    QRadioButton *m_serial;
    QRadioButton *m_remote;
    QComboBox *m_port;
    QLineEdit *m_ip;
    QLineEdit *m_tcpPort;
};

} // namespace kvr
