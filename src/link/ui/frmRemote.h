#pragma once
// The remote connection dialog: gateway address and port, Connect,
// Disconnect, Default (the demonstration gateway) and Cancel.
#include "app/AppContext.h"
#include "link/LinkController.h"
#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace kvr {

class frmRemote : public QDialog {
    Q_OBJECT
public:
    frmRemote(AppContext &context, LinkController &controller, QWidget *parent = nullptr);

private:
    void Connect();
    void Disconnect();
    void FillDefault();

    AppContext &m_context;
    LinkController &m_controller;
    QLineEdit *m_txtIP;
    QLineEdit *m_txtPort;
    QLabel *m_lblStatus;
};

} // namespace kvr
