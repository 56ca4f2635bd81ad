#pragma once
// A compile's progress on stderr for someone watching a terminal: one line,
// rewritten in place with a carriage return and wiped before each report
// line. Nothing at all when stderr is a file or a pipe, or when not wanted.
#include <QObject>

namespace kvr {

class CompileProgress;
class CompileReport;

class ProgressLine : public QObject {
    Q_OBJECT
public:
    // Connect before anything that prints the report, so the line is wiped first.
    ProgressLine(CompileProgress &progress, CompileReport &report, bool wanted);

private:
    void Show(const QString &text);
    void Wipe();

    bool m_shown = false;
};

} // namespace kvr
