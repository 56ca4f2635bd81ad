#include "compiler/CompileReport.h"
#include "app/AppContext.h"
#include "compiler/SourceText.h"
#include "link/Link.h"

namespace kvr {

CompileReport::CompileReport(AppContext &context, QObject *parent)
    : QObject(parent), m_context(context)
{
}

void CompileReport::ClearReport()
{
    emit BringForwardRequested();
    m_lines.clear();
    m_events.clear();
    emit Cleared();
}

void CompileReport::AddReportLine(const QString &text, const ReportEvent &event)
{
    const QString line = TrimBlanks(text);
    m_lines.append(line);
    m_events.append(event);
    emit LineAdded(line, event);
    Link(m_context).BeepUnlessQuiet();
}

} // namespace kvr
