#pragma once
// The PROMs menu of the frame: upload to a PROM image file and re-flash of
// a KVR4410F, each in its dialog over the logic that talks to the board.
#include <QObject>
#include <QPointer>

class QWidget;

namespace kvr {

class AppContext;
class CompileDriver;
class CompileReport;
class Link;
class PromUpload;
class Reflasher;
class TerminalHost;
class frmPROMUp;
class frmReFlash;

class PromWindows : public QObject {
    Q_OBJECT
public:
    PromWindows(AppContext &context, Link &link, CompileDriver &driver, CompileReport &report,
                TerminalHost *terminal, QWidget *frame, QObject *parent = nullptr);

    // mnuPUp and mnuPFlash.
    void ShowUpload();
    void ShowReflash();
    // The program is closing: whatever runs stops.
    void StopAll();

    PromUpload &Upload() { return *m_upload; }
    Reflasher &Reflash() { return *m_reflasher; }

signals:
    void HelpRequested(const QString &page);

private:
    AppContext &m_context;
    CompileDriver &m_driver;
    CompileReport &m_report;
    QWidget *m_frame;
    PromUpload *m_upload;
    Reflasher *m_reflasher;
    QPointer<frmPROMUp> m_uploadDialog;
    QPointer<frmReFlash> m_reflashDialog;
};

} // namespace kvr
