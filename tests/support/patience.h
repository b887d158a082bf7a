#pragma once

#include <QtTest>

/// How long a test waits for what threads and services do, ms: as long as that may take on a busy
/// machine. A test that passes does not wait longer for it.
constexpr int patienceMs = 60000;

#undef QTRY_COMPARE
#define QTRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, patienceMs)
#undef QTRY_VERIFY
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, patienceMs)
