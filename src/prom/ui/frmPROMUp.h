#pragma once
// The PROM upload dialog: the address range, the image file and its format;
// cmdOK runs the upload and the dialog shows its progress and outcome.
#include "prom/PromFormat.h"
#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace kvr {

class AppContext;
class PromUpload;

class frmPROMUp : public QDialog {
    Q_OBJECT
public:
    // `endOfProgram` is the end address of the last program compiled.
    frmPROMUp(AppContext &context, PromUpload &upload, const QString &endOfProgram, QWidget *parent = nullptr);

    ImageFormat Format() const;
    bool Running() const { return m_running; }

signals:
    void HelpRequested(const QString &page);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void reject() override;

private:
    void Ok();
    void FormatChanged();

    AppContext &m_context;
    PromUpload &m_upload;
    QLineEdit *m_txtInput[3];
    QRadioButton *m_optFormat[2];
    QLineEdit *m_txtProgress;
    QLineEdit *m_txtAddress;
    QLabel *m_lblProgress;
    QLabel *m_lblWait;
    QLabel *m_lblComplete;
    QLabel *m_lblCheck;
    QPushButton *m_cmdOK;
    QPushButton *m_cmdCancel;
    QPushButton *m_cmdComplete;
    bool m_running = false;
};

} // namespace kvr
