#pragma once
// The compilation report window: List1 shows the report's lines, newest
// selected; F2 halts a compile, Tab returns to the editor the compiler
// last showed, and the report can be coloured and printed.
#include <QPointer>
#include <QWidget>

class QListWidget;
class QMenuBar;
class QPrinter;

namespace kvr {

class AppContext;
class CompileReport;

class frmStatus : public QWidget {
    Q_OBJECT
public:
    frmStatus(AppContext &context, CompileReport &report, QWidget *parent = nullptr);

    QListWidget *List() const { return m_list; }

    // Prints the report on `printer`; false (with the message) when empty.
    bool PrintReport(QPrinter &printer);
    void ChooseBackgroundColor();
    void ChooseTextColor();
    // Applies the colour settings to the window and the list.
    void ApplyColors();
    // Width and place within the frame so the longest line fits.
    void FitToLongestLine();

signals:
    void HelpRequested(const QString &page);
    void HaltRequested();
    void EditorRequested();
    // Double-click or Enter on report line `row`.
    void ReportLineActivated(int row);
    // Frame commands repeated on this window's menu, by control name.
    void FrameCommand(const QString &controlName);

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void BuildMenus();
    void Print();
    bool ReportEmpty();
    void LayoutList();
    QWidget *Host();

    AppContext &m_context;
    CompileReport &m_report;
    QMenuBar *m_menuBar;
    QListWidget *m_list;
    bool m_listPlaced = false;
    int m_longest = 0; // pixel width of the longest report line
};

// The window rectangle (in the frame's area) that fits a line `needed`
// pixels wide: at most 90% of the area's width, moved left to stay inside.
QRect ReportWindowGeometry(const QRect &current, const QSize &area, int needed);

} // namespace kvr
