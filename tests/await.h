#ifndef AWAIT_H
#define AWAIT_H

#include <QtTest/QtTest>

// Waiting is for an event, and this long at most, also on a slow machine under a sanitizer.
constexpr int patience = 20'000; // milliseconds
#define AWAIT(condition) WITH_PATIENCE(QTRY_VERIFY_WITH_TIMEOUT(condition, patience))
#define AWAIT_OR_SAY(condition, text)                                                              \
    WITH_PATIENCE(QTRY_VERIFY2_WITH_TIMEOUT(condition, text, patience))
#define AWAIT_EQUAL(actual, expected)                                                              \
    WITH_PATIENCE(QTRY_COMPARE_WITH_TIMEOUT(actual, expected, patience))
// Qt 6.8's macros put a count of milliseconds into an int.
#define WITH_PATIENCE(check)                                                                       \
    do {                                                                                           \
        _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wconversion\"") check;   \
        _Pragma("GCC diagnostic pop")                                                              \
    } while (false)

#endif
