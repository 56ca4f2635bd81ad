#pragma once
// The suggestions analysis: each cleaned source line is examined for an
// old-style VALUE, a CASE with many clauses, deeply nested IFs and the
// rules of tblSuggest; each finding becomes a block of the report.
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace kvr {

struct SuggestRule {
    QString error;                     // fldError: matched as a whole word
    std::optional<QString> correction; // fldCorrection; none for a note
    QString notes;                     // fldSuggestNotes
};

class SuggestionAnalysis {
public:
    // `rules` in the order of the index inxError.
    SuggestionAnalysis(const QString &computerType, QList<SuggestRule> rules);

    // Appends the blocks for one line (comments removed) of `file` to `report`.
    void AnalyseLine(const QString &file, const QString &line, QStringList &report);

private:
    void CaseRule(const QString &file, const QString &line, const QString &worked, QStringList &report);
    void IfRule(const QString &file, const QString &line, const QString &worked, QStringList &report);
    void TableRule(const QString &file, const QString &line, QString worked, QStringList &report);

    QString m_computerType;
    QList<SuggestRule> m_rules;
    int m_ofCount = 0;
    QString m_caseLine;
    QString m_caseReported;
    int m_ifDepth = 0;
    QString m_ifLine;
    QString m_ifReported;
};

} // namespace kvr
