#pragma once
// The compilation report: one line per event of a compile, newest last.
// The window (frmStatus) shows it; the command line prints it.
#include <QObject>
#include <QStringList>

namespace kvr {

class AppContext;

// What a report line is about, for machine-readable output.
struct ReportEvent {
    QString kind; // "included", "finished", "board-error", ...
    QString file; // the file being read, empty when none applies
    int line = 0; // its line number, 0 when none applies
};

class CompileReport : public QObject {
    Q_OBJECT
public:
    explicit CompileReport(AppContext &context, QObject *parent = nullptr);

    // Brings the window forward and empties the list.
    void ClearReport();
    void BringForward() { emit BringForwardRequested(); }
    // Trims blanks, appends, selects the new line, beeps unless quiet.
    void AddReportLine(const QString &text, const ReportEvent &event = {});

    const QStringList &Lines() const { return m_lines; }
    // What line `row` is about; an empty event when out of range.
    ReportEvent Event(int row) const { return m_events.value(row); }
    QString LastLine() const { return m_lines.isEmpty() ? QString() : m_lines.last(); }

signals:
    void Cleared();
    void LineAdded(const QString &text, const kvr::ReportEvent &event);
    void BringForwardRequested();

private:
    AppContext &m_context;
    QStringList m_lines;
    QList<ReportEvent> m_events;
};

} // namespace kvr
