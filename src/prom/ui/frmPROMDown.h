#pragma once
// Download to programmer: choose a PROM image, have it checked, confirm the
// programmer's command line, and watch its output until it ends.
#include <QDialog>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace kvr {

class AppContext;
class ProgrammerDownload;

class frmPROMDown : public QDialog {
    Q_OBJECT
public:
    frmPROMDown(AppContext &context, QWidget *parent = nullptr);

    // cmdRun: check, confirm, run. False when nothing was started.
    bool Run();
    ProgrammerDownload &Download() { return *m_download; }

protected:
    void reject() override;

private:
    void ChooseFile();
    void SetRunning(bool running);

    AppContext &m_context;
    ProgrammerDownload *m_download;
    QLineEdit *m_file;
    QLineEdit *m_device;
    QLineEdit *m_command;
    QLabel *m_check;
    QPlainTextEdit *m_output;
    QLabel *m_status;
    QPushButton *m_run;
    QPushButton *m_cancel;
};

} // namespace kvr
