#pragma once
// The compiler's part of the windowed program: the report window in the
// frame, the compile driver, and the Compile menus of the editor windows,
// wired to each other. The frame's assembly creates one of these.
#include <QObject>
#include <QPointer>

class QMdiArea;
class QMdiSubWindow;

namespace kvr {

class AppContext;
class CompileDriver;
class CompileMenus;
class CompileProgress;
class CompileReport;
class EditorHost;
class Link;
class TerminalHost;
class frmStatus;

class CompilerWindows : public QObject {
    Q_OBJECT
public:
    CompilerWindows(AppContext &context, Link &link, TerminalHost *terminal, EditorHost *editor, QMdiArea *area,
                    QObject *parent = nullptr);
    ~CompilerWindows() override;

    CompileDriver &Driver() { return *m_driver; }
    CompileReport &Report() { return *m_report; }
    CompileMenus &Menus() { return *m_menus; }
    CompileProgress &Progress() { return *m_progress; }
    frmStatus *StatusWindow() const;

    // The editor pool, once it exists: the failing line is shown there and
    // its windows get their Compile menus.
    void SetEditorHost(EditorHost *editor);

    void BringReportForward();
    // Tab in the report: the editor window the compiler last showed.
    void BringErrorEditorForward();

signals:
    void HelpRequested(const QString &page);
    // A frame command repeated on the report's menu ("mnuFExit", ...).
    void FrameCommand(const QString &controlName);

private:
    QMdiArea *m_area;
    CompileReport *m_report;
    CompileDriver *m_driver;
    CompileMenus *m_menus;
    CompileProgress *m_progress;
    QPointer<frmStatus> m_status;
    QPointer<QMdiSubWindow> m_statusWindow;
};

} // namespace kvr
