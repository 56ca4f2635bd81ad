#pragma once
// Short forms for data-driven tests: a table's columns declared in one
// line, and a row's cell read where it is used.
#include <QString>
#include <QTest>
#include <initializer_list>

namespace kvr::test {

template <typename... T>
void Columns(std::initializer_list<const char *> names)
{
    auto name = names.begin();
    (QTest::addColumn<T>(*name++), ...);
}

template <typename T>
T Cell(const char *name)
{
    return *static_cast<T *>(QTest::qData(name, ::qMetaTypeId<T>()));
}

// A row of a table of text rules (columns "rule", "input", "expected").
inline void RuleRow(const char *name, const char *rule, const QString &input, const QString &expected)
{
    QTest::newRow(name) << QString::fromLatin1(rule) << input << expected;
}

} // namespace kvr::test
