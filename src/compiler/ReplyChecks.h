#pragma once
// What the compiler reads in the board's reply to a line, with nothing but
// the reply at hand: the error the board reports and the redefinition it
// warns of, each cut out from the word before it.

#include <QString>

#include <optional>

namespace kvr {

// From the offending word on, when the reply holds the error marker " ?  - ".
std::optional<QString> BoardErrorText(const QString &reply);

// The redefined word and "NOT UNIQUE", when the reply holds the warning.
std::optional<QString> NotUniqueText(const QString &reply);

} // namespace kvr
