#pragma once
// The re-flash dialog: cmdProceed asks for the S-record file and sends it
// to the KVR4410F; the dialog shows each stage, the progress and the
// board's verdict.
#include <QDialog>

class QLabel;
class QPushButton;

namespace kvr {

class Reflasher;

class frmReFlash : public QDialog {
    Q_OBJECT
public:
    explicit frmReFlash(Reflasher &reflasher, QWidget *parent = nullptr);

    bool Running() const { return m_running; }

signals:
    void HelpRequested(const QString &page);

protected:
    void reject() override;

private:
    void Proceed();
    void AddProgressBlock();

    Reflasher &m_reflasher;
    QLabel *m_lblStatus;
    QLabel *m_lblProgress;
    QLabel *m_lblVerdict;
    QPushButton *m_cmdProceed;
    QPushButton *m_cmdCancel;
    QPushButton *m_cmdOK;
    QPushButton *m_cmdHelp;
    int m_blocks = 0;
    bool m_running = false;
};

} // namespace kvr
