#pragma once

#include <QTest>

/// Names the columns of a data-driven test.
/// @return what adds a row: its title, then a value for each column.
template <typename... Values, typename... Names>
auto dataColumns(Names... names)
{
    static_assert(sizeof...(Values) == sizeof...(Names));
    (QTest::addColumn<Values>(names), ...);
    return [](const char *title, const Values &...values) {
        (QTest::newRow(title) << ... << values);
    };
}
