#include "cli/ProgressLine.h"
#include "compiler/CompileProgress.h"
#include "compiler/CompileReport.h"
#include <cstdio>
#include <unistd.h>

namespace kvr {

ProgressLine::ProgressLine(CompileProgress &progress, CompileReport &report, bool wanted)
{
    if (!wanted || !::isatty(::fileno(stderr)))
        return;
    connect(&progress, &CompileProgress::Updated, this, &ProgressLine::Show);
    connect(&report, &CompileReport::LineAdded, this, &ProgressLine::Wipe);
}

void ProgressLine::Show(const QString &text)
{
    if (text.isEmpty()) {
        Wipe();
        return;
    }
    // The cursor waits at the start of the line: whatever else is printed
    // meanwhile writes over the progress rather than after it.
    std::fprintf(stderr, "\r%s\x1b[K\r", text.toLocal8Bit().constData());
    std::fflush(stderr);
    m_shown = true;
}

void ProgressLine::Wipe()
{
    if (!m_shown)
        return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    m_shown = false;
}

} // namespace kvr
