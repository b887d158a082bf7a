#pragma once

#include <QtTest>

/// The columns of a data-driven test, as many types as names.
template <typename... Types> void addColumns(const char *const (&names)[sizeof...(Types)])
{
    int column = 0;
    (QTest::addColumn<Types>(names[column++]), ...);
}

/// One row; plain literals are texts (QString).
template <typename... Values> void newRow(const char *tag, const Values &...values)
{
    (QTest::newRow(tag) << ... << values);
}
