#pragma once
// The help window and the frame's items around it: F1 everywhere, the
// Manual and Help menus, About, and the DOS window (the desktop's terminal).
#include <QObject>
#include <QPointer>

class QWidget;

namespace kvr {

class AppContext;
class frmBrowser;
class frmMDI;

class HelpWindows : public QObject {
    Q_OBJECT
public:
    HelpWindows(AppContext &context, QWidget *frame, QObject *parent = nullptr);

    // The frame's Manual and Help items, mnuFShell, and F1 anywhere in the
    // program (the page of the window that has the focus).
    void ConnectFrame(frmMDI &frame);

    // Opens `topic` in the help window; says so when the page is missing.
    void ShowTopic(const QString &topic);
    void ShowHelpForFocus();
    void ShowAbout();
    // mnuFShell: the terminal in the current source file's folder.
    void StartShell();
    // A web item: the address from the settings in the desktop's browser.
    void OpenAddress(const QString &address, const QString &what, const QString &key);

    frmBrowser *Browser() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    AppContext &m_context;
    QWidget *m_frame;
    QPointer<frmBrowser> m_browser;
};

} // namespace kvr
