#include "link/ui/frmEmulator.h"
#include "app/Text.h"
#include "link/ui/KeyboardLock.h"
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>

namespace kvr {

namespace {
// How a progress block (character 127) is shown.
const QChar ProgressBlock(0x2588);
}

frmEmulator::frmEmulator(AppContext &context, Link &link, QWidget *parent)
    : QWidget(parent), m_context(context)
{
    setObjectName(QStringLiteral("frmEmulator"));
    setWindowTitle(QStringLiteral("Interactive window"));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled, false);

    m_terminal = new Terminal(context, link, this);
    m_controller = new LinkController(context, link, this);
    m_controller->setObjectName(QStringLiteral("LinkController"));
    m_controller->SetTerminal(m_terminal);

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("ComInputTimer"));
    m_timer->setInterval(TimerIntervalMs);
    connect(m_timer, &QTimer::timeout, m_terminal, &Terminal::Tick);
    m_timer->start();
    connect(m_terminal, &Terminal::InputTimerChanged, this, [this](bool on) {
        if (on)
            m_timer->start();
        else
            m_timer->stop();
    });

    m_lblCompilation = new QLabel(this);
    m_lblCompilation->setObjectName(QStringLiteral("lblCompilation"));
    m_lblProgress = new QLabel(QStringLiteral("Compilation in progress"), this);
    m_lblProgress->setObjectName(QStringLiteral("lblProgress"));
    m_lblProgress->setAlignment(Qt::AlignCenter);
    m_lblSerialError = new QLabel(QStringLiteral("Serial link error"), this);
    m_lblSerialError->setObjectName(QStringLiteral("lblSerialError"));
    m_lblSerialError->setStyleSheet(QStringLiteral("background: #c00000; color: white; padding: 2px 6px;"));
    for (QLabel *label : {m_lblCompilation, m_lblProgress, m_lblSerialError})
        label->hide();

    m_scrollBar = new QScrollBar(Qt::Vertical, this);
    m_scrollBar->setObjectName(QStringLiteral("vsbScrollBack"));
    m_scrollBar->setFocusPolicy(Qt::NoFocus);
    connect(m_scrollBar, &QScrollBar::valueChanged, this, [this](int value) {
        m_viewTop = value;
        m_followOutput = value >= MaxViewTop();
        update();
    });

    connect(m_terminal, &Terminal::ScreenChanged, this, [this] {
        UpdateScrollRange();
        update();
    });
    connect(m_terminal, &Terminal::CursorBlinked, this, qOverload<>(&QWidget::update));
    connect(m_terminal, &Terminal::IndicatorsChanged, this, &frmEmulator::UpdateIndicators);
    connect(m_terminal, &Terminal::ColorsChanged, this, &frmEmulator::ApplySettings);
    connect(m_terminal, &Terminal::BringForwardRequested, this, &frmEmulator::BringForward);
    connect(m_controller, &LinkController::BringTerminalForward, this, &frmEmulator::BringForward);
    connect(m_controller, &LinkController::SerialFault, m_terminal, &Terminal::ShowSerialError);
    connect(m_controller, &LinkController::LinkStateChanged, m_terminal, &Terminal::SetLinkState);
    connect(m_terminal, &Terminal::CapsLockChanged, this, &frmEmulator::ApplyCapsLock);
    connect(&context, &AppContext::SettingsWritten, this, &frmEmulator::ApplySettings);
    ApplySettings();
}

frmEmulator::~frmEmulator()
{
    if (m_capsLockBefore)
        SetKeyboardCapsLock(*m_capsLockBefore);
}

void frmEmulator::ApplyCapsLock(bool on)
{
    if (!m_capsLockBefore)
        m_capsLockBefore = KeyboardCapsLockOn();
    // Off switches the keyboard's lock off too: the option was what put it on.
    // A server that takes the request but keeps its lock (some virtual
    // displays) is treated as one that has none.
    const bool switched = SetKeyboardCapsLock(on) && KeyboardCapsLockOn() == on;
    m_terminal->SetCapsLockEmulated(on && !switched);
}

QSize frmEmulator::sizeHint() const
{
    return QSize(m_charWidth * 80 + m_scrollBar->sizeHint().width(), m_lineHeight * 25);
}

void frmEmulator::Load()
{
    ApplySettings();
    if (m_terminal->CapsLockOn())
        ApplyCapsLock(true);
    m_controller->OpenAtStart();
}

void frmEmulator::BringForward()
{
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget())) {
        sub->show();
        if (QMdiArea *area = sub->mdiArea())
            area->setActiveSubWindow(sub);
    }
    show();
    raise();
    setFocus();
}

void frmEmulator::ApplySettings()
{
    const Settings &s = m_context.settings;
    m_background = s.Color(ColorWindow::Emulator, false);
    m_foreground = s.Color(ColorWindow::Emulator, true);
    // The terminal needs a fixed pitch: the configured font when it is one,
    // the system's fixed font at that size otherwise.
    QFont font = s.TextFont(6);
    font.setFixedPitch(true);
    if (!QFontInfo(font).fixedPitch()) {
        QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        fixed.setPointSize(font.pointSize());
        fixed.setBold(font.bold());
        font = fixed;
    }
    m_font = font;
    const QFontMetrics metrics(m_font);
    m_charWidth = std::max(1, metrics.horizontalAdvance(QLatin1Char('M')));
    m_lineHeight = std::max(1, metrics.height());
    for (QLabel *label : {m_lblCompilation, m_lblProgress}) {
        label->setFont(m_font);
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, m_foreground);
        label->setPalette(palette);
    }
    resizeEvent(nullptr);
    update();
}

int frmEmulator::VisibleRows() const
{
    return std::max(1, height() / m_lineHeight);
}

int frmEmulator::ScreenTop() const
{
    // Screen rows are shown so that the cursor's row stays in view.
    const ScreenModel &screen = m_terminal->Screen();
    return std::max(0, screen.LastUsedRow() - VisibleRows() + 1);
}

int frmEmulator::MaxViewTop() const
{
    return int(m_terminal->Screen().ScrollBack().size()) + ScreenTop();
}

void frmEmulator::UpdateScrollRange()
{
    const int maxTop = MaxViewTop();
    const QSignalBlocker block(m_scrollBar);
    m_scrollBar->setRange(0, maxTop);
    m_scrollBar->setPageStep(VisibleRows());
    if (m_followOutput || m_viewTop > maxTop)
        m_viewTop = maxTop;
    m_scrollBar->setValue(m_viewTop);
}

void frmEmulator::ScrollBy(int lines)
{
    m_scrollBar->setValue(std::clamp(m_viewTop + lines, 0, MaxViewTop()));
}

void frmEmulator::UpdateIndicators()
{
    const QString down = m_terminal->LinkDownReason();
    m_lblSerialError->setText(down.isEmpty() ? QStringLiteral("Serial link error") : QStringLiteral("Link down: ") + down);
    m_lblSerialError->setVisible(m_terminal->SerialErrorShown());
    m_lblSerialError->adjustSize();
    m_lblSerialError->move(width() - m_scrollBar->width() - m_lblSerialError->width() - 4, 4);
    QString blocks = m_terminal->ProgressText();
    blocks.replace(QChar(127), ProgressBlock);
    m_lblCompilation->setText(blocks);
    const bool progress = m_terminal->ProgressVisible();
    m_lblCompilation->setVisible(progress);
    m_lblProgress->setVisible(progress);
}

void frmEmulator::PlaceProgressLabels()
{
    const int innerWidth = width() - m_scrollBar->width();
    const int labelWidth = std::max(m_charWidth, innerWidth * 2 / 3);
    m_lblCompilation->resize(labelWidth, m_lineHeight + 4);
    m_lblProgress->resize(labelWidth, m_lineHeight + 4);
    const int left = (innerWidth - m_lblCompilation->width()) / 2;
    const int top = (height() - m_lblCompilation->height()) / 2;
    m_lblCompilation->move(left, top);
    m_lblProgress->move((innerWidth - m_lblProgress->width()) / 2, top - m_lblProgress->height());
    const QFontMetrics metrics(m_font);
    int blockWidth = metrics.horizontalAdvance(ProgressBlock);
    if (blockWidth <= 0)
        blockWidth = m_charWidth;
    m_terminal->SetProgressCapacity(std::max(1, labelWidth / blockWidth));
}

void frmEmulator::resizeEvent(QResizeEvent *)
{
    const int barWidth = m_scrollBar->sizeHint().width();
    m_scrollBar->setGeometry(width() - barWidth, 0, barWidth, height());
    m_terminal->Screen().SetVisibleColumns(std::max(1, (width() - barWidth) / m_charWidth));
    PlaceProgressLabels();
    UpdateIndicators();
    UpdateScrollRange();
}

void frmEmulator::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), m_background);
    painter.setFont(m_font);
    painter.setPen(m_foreground);
    const ScreenModel &screen = m_terminal->Screen();
    const QList<QString> &history = screen.ScrollBack();
    const int historySize = int(history.size());
    const int rows = VisibleRows() + 1;
    const int columns = screen.VisibleColumns();
    const int ascent = QFontMetrics(m_font).ascent();
    for (int i = 0; i < rows; ++i) {
        const int index = m_viewTop + i;
        const QString *line = nullptr;
        if (index < historySize)
            line = &history.at(index);
        else if (index - historySize < screen.Rows())
            line = &screen.Line(index - historySize);
        if (!line)
            break;
        painter.drawText(0, i * m_lineHeight + ascent, line->left(columns));
    }
    // The selection shows in reverse colours.
    QPoint from = m_selectionAnchor, to = m_selectionEnd;
    if (std::make_pair(to.y(), to.x()) < std::make_pair(from.y(), from.x()))
        std::swap(from, to);
    for (int lineIndex = std::max(from.y(), m_viewTop); from != to && lineIndex <= to.y(); ++lineIndex) {
        const int row = lineIndex - m_viewTop;
        if (row >= rows)
            break;
        const int start = lineIndex == from.y() ? from.x() : 0;
        const int end = lineIndex == to.y() ? to.x() : columns;
        const QString text = m_terminal->TextBetween(lineIndex, start, lineIndex, end).leftJustified(end - start);
        const QRect band(start * m_charWidth, row * m_lineHeight, (end - start) * m_charWidth, m_lineHeight);
        painter.fillRect(band, m_foreground);
        painter.setPen(m_background);
        painter.drawText(band.left(), row * m_lineHeight + ascent, text);
        painter.setPen(m_foreground);
    }
    if (m_terminal->CursorShown()) {
        const int row = historySize + screen.Row() - m_viewTop;
        if (row >= 0 && row < rows)
            painter.drawText(screen.Column() * m_charWidth, row * m_lineHeight + ascent, QStringLiteral("_"));
    }
}

bool frmEmulator::event(QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        // Tab goes to the terminal, not to the focus chain.
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
            keyPressEvent(key);
            return true;
        }
    } else if (event->type() == QEvent::ShortcutOverride) {
        // A control chord is a character for the board, not a window
        // shortcut (Ctrl+W would close the sub-window).
        auto *key = static_cast<QKeyEvent *>(event);
        const Qt::KeyboardModifiers chord = key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
        if (chord == Qt::ControlModifier && ControlCode(key->key()) >= 0) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void frmEmulator::keyPressEvent(QKeyEvent *event)
{
    // A hidden terminal takes no keys.
    if (!isVisible())
        return;
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool shift = modifiers & Qt::ShiftModifier;
    if (shift && (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)) {
        ScrollBy(event->key() == Qt::Key_PageUp ? -VisibleRows() : VisibleRows());
        return;
    }
    if (event->key() == Qt::Key_Insert && (shift || (modifiers & Qt::ControlModifier))) {
        if (shift)
            PasteClipboard();
        else
            CopySelection();
        return;
    }
    if (m_terminal->KeyPressed(event->key(), modifiers, event->text()))
        return;
    QWidget::keyPressEvent(event);
}

QPoint frmEmulator::TextPosition(const QPoint &pixel) const
{
    const int line = m_viewTop + std::max(0, pixel.y()) / m_lineHeight;
    const int column = std::clamp((pixel.x() + m_charWidth / 2) / m_charWidth, 0, m_terminal->Screen().VisibleColumns());
    return QPoint(column, line);
}

void frmEmulator::mousePressEvent(QMouseEvent *event)
{
    setFocus();
    if (event->button() != Qt::LeftButton)
        return;
    m_selectionAnchor = m_selectionEnd = TextPosition(event->position().toPoint());
    update();
}

void frmEmulator::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    m_selectionEnd = TextPosition(event->position().toPoint());
    update();
}

QString frmEmulator::SelectedText() const
{
    if (m_selectionAnchor == m_selectionEnd)
        return {};
    return m_terminal->TextBetween(m_selectionAnchor.y(), m_selectionAnchor.x(), m_selectionEnd.y(),
                                   m_selectionEnd.x());
}

void frmEmulator::CopySelection()
{
    const QString text = SelectedText();
    if (!text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

void frmEmulator::PasteClipboard()
{
    m_terminal->Paste(QGuiApplication::clipboard()->text());
}

void frmEmulator::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    QAction *copy = menu.addAction(QStringLiteral("&Copy"), this, &frmEmulator::CopySelection);
    copy->setObjectName(QStringLiteral("mnuTCopy"));
    copy->setEnabled(!SelectedText().isEmpty());
    QAction *paste = menu.addAction(QStringLiteral("&Paste"), this, &frmEmulator::PasteClipboard);
    paste->setObjectName(QStringLiteral("mnuTPaste"));
    paste->setEnabled(!QGuiApplication::clipboard()->text().isEmpty() && !m_terminal->IsPasting());
    menu.exec(event->globalPos());
}

void frmEmulator::wheelEvent(QWheelEvent *event)
{
    ScrollBy(-event->angleDelta().y() / 40);
}

void frmEmulator::closeEvent(QCloseEvent *event)
{
    // The window holds the link: it is hidden, never destroyed, while the
    // program runs.
    event->ignore();
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget()))
        sub->hide();
    else
        hide();
}

} // namespace kvr
