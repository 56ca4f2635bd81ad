#pragma once
// Which help page F1 opens: the first of the focused control and the
// windows around it (innermost first, by object name) that has a page.
#include <QString>
#include <QStringList>

namespace kvr {

// `objectNames`: the focus widget's name, then each parent's, outwards.
// Empty when none has a page.
QString TopicFor(const QStringList &objectNames);

} // namespace kvr
