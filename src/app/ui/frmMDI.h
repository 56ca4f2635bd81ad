#pragma once
// The main frame: a multiple-document window holding the editor windows,
// the terminal and the report, with the menus that lead to the rest.
#include "app/AppContext.h"
#include <QMainWindow>
#include <functional>

class QMdiArea;
class QMenu;
class QAction;

namespace kvr {

class frmMDI : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMDI(AppContext &context, QWidget *parent = nullptr);

    QMdiArea *MdiArea() const { return m_mdi; }
    // A menu item or menu by control name, e.g. "mnuFNew", "mnuOP(3)".
    QAction *Item(const QString &controlName) const;
    QMenu *Menu(const QString &controlName) const;
    // Lists the visible child windows at the end of the Window menu, the
    // active one ticked, as an MDI window list does.
    void UpdateWindowList();

    static QString ArrayName(const QString &name, int index);

    // Sets the caption from the computer type and the link.
    void UpdateCaption();
    // Enables what makes sense for the computer type.
    void UpdateMenuState();
    // Ticks the port, timeout and baud items from the settings.
    void UpdateTicks();

    // Whether the TCP data connection is up, for the caption.
    void SetTcpConnectedProvider(std::function<bool()> provider) { m_tcpConnected = std::move(provider); }
    void SetLinkDownProvider(std::function<QString()> provider) { m_linkDown = std::move(provider); }
    // Asked before the frame closes; false abandons the exit.
    void SetCloseGuard(std::function<bool()> guard) { m_closeGuard = std::move(guard); }
    // Closes without asking anything (the session ends): the guard is not
    // asked, and every event loop, a modal box's included, ends.
    void CloseWithoutQuestions();

signals:
    // The Window menu's item for the interactive window, hidden or not.
    void TerminalRequested();
    // A port item was chosen: 0 for the remote board, 1-20 for COM1-COM20.
    void PortRequested(int port);
    // The computer type or link was changed in the computer dialog.
    void ComputerChanged();
    // The frame is going away (after the close guard agreed).
    void Closing();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void BuildMenus();
    void ConnectOptionItems();
    void ChooseTimeout(int index);
    void ChooseBaud(int index);
    void ChooseTerminalColor(bool foreground);
    void ChooseFont();
    void ShowDelayDialog();
    void ShowComputerDialog();
    void ShowNotInstalled(const QString &what);
    void ArrangeTiles(Qt::Orientation orientation);

    AppContext &m_context;
    QMdiArea *m_mdi;
    std::function<bool()> m_tcpConnected;
    std::function<QString()> m_linkDown;
    std::function<bool()> m_closeGuard;
    bool m_noQuestions = false;
};

// Values behind the timeout and baud items, in item order.
extern const int TimeoutValues[5];
extern const int BaudValues[8];

} // namespace kvr
