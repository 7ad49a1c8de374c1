// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QTest>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
#endif

#include <initializer_list>

/// A program that holds several tests and runs one of them, in a process of its own: `PROGRAM TEST [FUNCTION …] [OPTION
/// …]`, with functions and options as Qt Test knows them. See harrowby_add_tests() in tests/CMakeLists.txt.
namespace harrowby::test {

struct NamedTest
{
    const char *name;
    int (*run)(int argc, char **argv); ///< as main(), without the test's name
};

/// The result of the test that the first argument names; 2 when it names none, and the error output lists them all.
int runNamedTest(std::initializer_list<NamedTest> tests, int argc, char **argv);

/// QTest::qExec() without the functions that the environment variable HARROWBY_TEST_EXCEPT names, separated by commas.
/// A command line with functions or options is obeyed as it is.
int runFunctions(QObject &test, int argc, char **argv);

template <typename Application, typename Test>
int runTest(int argc, char **argv)
{
    Application application(argc, argv);
    application.setAttribute(Qt::AA_Use96Dpi, true);
    Test test;
    return runFunctions(test, argc, argv);
}

} // namespace harrowby::test

/// In place of QTEST_MAIN(Class): the test `name` of its program.
#define HARROWBY_TEST(name, Class)                                                                                     \
    int name(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        return harrowby::test::runTest<QApplication, Class>(argc, argv);                                               \
    }

/// In place of QTEST_GUILESS_MAIN(Class).
#define HARROWBY_CORE_TEST(name, Class)                                                                                \
    int name(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        return harrowby::test::runTest<QCoreApplication, Class>(argc, argv);                                           \
    }
