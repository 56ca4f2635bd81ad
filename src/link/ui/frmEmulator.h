#pragma once
// The interactive terminal window: paints the screen buffer in the Emulator
// colours with a blinking "_" cursor, forwards keys to the terminal logic,
// polls the link with ComInputTimer and holds the link controller.
#include "app/AppContext.h"
#include "link/Link.h"
#include "link/LinkController.h"
#include "link/Terminal.h"
#include <QWidget>
#include <optional>

class QLabel;
class QScrollBar;
class QTimer;

namespace kvr {

class frmEmulator : public QWidget {
    Q_OBJECT
public:
    static constexpr int TimerIntervalMs = 50;

    frmEmulator(AppContext &context, Link &link, QWidget *parent = nullptr);
    // Gives the keyboard its Caps Lock back as the program found it.
    ~frmEmulator() override;

    Terminal &Logic() { return *m_terminal; }
    LinkController &Controller() { return *m_controller; }

    // The load handler: colours from the settings, then the configured link.
    void Load();
    // Shows the window and makes it the active child of its frame.
    void BringForward();

    QSize sizeHint() const override;

    // The clipboard's text into the board, as typed; the selection out.
    void PasteClipboard();
    void CopySelection();
    QString SelectedText() const;

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void ApplySettings();
    void UpdateIndicators();
    void PlaceProgressLabels();
    void UpdateScrollRange();
    void ScrollBy(int lines);
    int VisibleRows() const;
    int ScreenTop() const;
    int MaxViewTop() const;
    // The line (counted from the oldest scroll-back line) and column under a point.
    QPoint TextPosition(const QPoint &pixel) const;
    void ApplyCapsLock(bool on);
    // The keyboard's own Caps Lock before the option first switched it.
    std::optional<bool> m_capsLockBefore;

    AppContext &m_context;
    Terminal *m_terminal;
    LinkController *m_controller;
    QTimer *m_timer;
    QLabel *m_lblCompilation;
    QLabel *m_lblProgress;
    QLabel *m_lblSerialError;
    QScrollBar *m_scrollBar;
    QFont m_font;
    QColor m_background;
    QColor m_foreground;
    int m_charWidth = 8;
    int m_lineHeight = 16;
    int m_viewTop = 0;
    bool m_followOutput = true;
    // Mouse selection, in TextPosition coordinates; empty when equal.
    QPoint m_selectionAnchor;
    QPoint m_selectionEnd;
};

} // namespace kvr
