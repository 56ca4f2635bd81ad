#include "prom/ui/PromWindows.h"
#include "app/AppContext.h"
#include "compiler/CompileDriver.h"
#include "compiler/CompileReport.h"
#include "prom/PromUpload.h"
#include "prom/Reflash.h"
#include "prom/ui/frmPROMUp.h"
#include "prom/ui/frmReFlash.h"

namespace kvr {

PromWindows::PromWindows(AppContext &context, Link &link, CompileDriver &driver, CompileReport &report,
                         TerminalHost *terminal, QWidget *frame, QObject *parent)
    : QObject(parent), m_context(context), m_driver(driver), m_report(report), m_frame(frame),
      m_upload(new PromUpload(context, link, driver, terminal, this)),
      m_reflasher(new Reflasher(context, link, driver, terminal, this))
{
}

void PromWindows::ShowUpload()
{
    if (m_context.settings.computerType == QLatin1String("Terminal")) {
        m_driver.TerminalModeMessage();
        return;
    }
    if (m_uploadDialog)
        return;
    m_report.ClearReport();
    m_uploadDialog = new frmPROMUp(m_context, *m_upload, m_driver.State().endOfProgramAddress, m_frame);
    m_uploadDialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_uploadDialog, &frmPROMUp::HelpRequested, this, &PromWindows::HelpRequested);
    m_uploadDialog->open();
}

void PromWindows::ShowReflash()
{
    // Only a KVR4410 can be a KVR4410F.
    if (m_context.settings.computerType.left(4) != QLatin1String("4410") || m_reflashDialog)
        return;
    m_reflashDialog = new frmReFlash(*m_reflasher, m_frame);
    m_reflashDialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_reflashDialog, &frmReFlash::HelpRequested, this, &PromWindows::HelpRequested);
    m_reflashDialog->open();
}

void PromWindows::StopAll()
{
    m_upload->Stop();
    m_reflasher->Stop();
}

} // namespace kvr
