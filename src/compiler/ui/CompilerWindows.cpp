#include "compiler/ui/CompilerWindows.h"
#include "app/AppContext.h"
#include "compiler/CompileDriver.h"
#include "compiler/CompileProgress.h"
#include "compiler/CompileReport.h"
#include "compiler/ui/CompileMenus.h"
#include "compiler/ui/frmStatus.h"
#include <QMdiArea>
#include <QMdiSubWindow>

namespace kvr {

CompilerWindows::CompilerWindows(AppContext &context, Link &link, TerminalHost *terminal, EditorHost *editor,
                                 QMdiArea *area, QObject *parent)
    : QObject(parent), m_area(area), m_report(new CompileReport(context, this)),
      m_driver(new CompileDriver(context, link, terminal, editor, *m_report, this)),
      m_menus(new CompileMenus(context, *m_driver, editor, this)),
      m_progress(new CompileProgress(*m_driver, context.clock, this))
{
    m_status = new frmStatus(context, *m_report);
    if (m_area) {
        m_statusWindow = m_area->addSubWindow(m_status);
        // Closing the report only hides it: the compiler writes to it.
        m_statusWindow->setAttribute(Qt::WA_DeleteOnClose, false);
        m_statusWindow->resize(520, 220);
        m_statusWindow->hide();
    }
    connect(m_report, &CompileReport::BringForwardRequested, this, &CompilerWindows::BringReportForward);
    connect(m_status, &frmStatus::HaltRequested, m_driver, &CompileDriver::HaltCompile);
    connect(m_status, &frmStatus::EditorRequested, this, &CompilerWindows::BringErrorEditorForward);
    connect(m_status, &frmStatus::ReportLineActivated, this, [this](int row) {
        if (m_driver->ShowReportLine(row))
            BringErrorEditorForward();
    });
    connect(m_status, &frmStatus::HelpRequested, this, &CompilerWindows::HelpRequested);
    connect(m_status, &frmStatus::FrameCommand, this, &CompilerWindows::FrameCommand);
}

CompilerWindows::~CompilerWindows()
{
    if (m_statusWindow)
        delete m_statusWindow.data();
    else
        delete m_status.data();
}

frmStatus *CompilerWindows::StatusWindow() const
{
    return m_status.data();
}

void CompilerWindows::SetEditorHost(EditorHost *editor)
{
    m_driver->SetEditorHost(editor);
    m_menus->SetEditorHost(editor);
}

void CompilerWindows::BringReportForward()
{
    QWidget *window = m_statusWindow ? static_cast<QWidget *>(m_statusWindow.data()) : m_status.data();
    if (!window)
        return;
    window->show();
    window->raise();
}

void CompilerWindows::BringErrorEditorForward()
{
    QWidget *editor = m_menus->Window(m_driver->LastErrorEditor());
    if (!editor)
        return;
    QWidget *w = editor;
    while (w && !qobject_cast<QMdiSubWindow *>(w))
        w = w->parentWidget();
    if (auto *sub = qobject_cast<QMdiSubWindow *>(w); sub && sub->mdiArea()) {
        sub->mdiArea()->setActiveSubWindow(sub);
    } else {
        editor->raise();
        editor->activateWindow();
    }
    editor->setFocus();
}

} // namespace kvr
