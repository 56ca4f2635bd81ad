#pragma once
// The file-type lists of the editor's file dialogs.
#include <QString>

namespace kvr {

// As the dialogs list them, "description|pattern|description|pattern...".
inline const QString SourceFileFilter = QStringLiteral(
    "Source Files (*.kvr)|*.kvr|Text files (*.txt)|*.txt|Suggestion files (*.sug)|*.sug|"
    "Capture files (*.cap)|*.cap|Hex prom files (*.int)|*.int|"
    "S-record prom files (*.mot)|*.mot|All files (*.*)|*.*");
inline const QString InsertFileFilter = QStringLiteral(
    "Source Files (*.kvr)|*.kvr|Text files (*.txt)|*.txt|Suggestion files (*.sug)|*.sug|"
    "Capture files (*.cap)|*.cap|All files (*.*)|*.*");

// The same list in the form Qt's dialogs take ("Text (*.txt);;All (*)").
// Each row keeps its description; "*.*" matches names without a dot too.
QString QtFilter(const QString &filter);

} // namespace kvr
