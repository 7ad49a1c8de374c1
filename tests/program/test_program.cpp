// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"

#include <QMetaMethod>
#include <QStringList>

#include <cstdio>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

/// The functions of a test, as Qt Test finds them.
QStringList functionsOf(const QObject &test)
{
    static const QStringList others{u"initTestCase"_s, u"cleanupTestCase"_s, u"init"_s, u"cleanup"_s};
    const QMetaObject *type = test.metaObject();
    QStringList functions;
    for (int index = 0; index < type->methodCount(); ++index) {
        const QMetaMethod method = type->method(index);
        const QString name = QString::fromLatin1(method.name());
        if (method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private &&
            method.parameterCount() == 0 && !name.endsWith(u"_data"_s) && !others.contains(name))
            functions << name;
    }
    return functions;
}

} // namespace

int harrowby::test::runNamedTest(std::initializer_list<NamedTest> tests, int argc, char **argv)
{
    for (const NamedTest &test : tests) {
        if (argc < 2 || std::strcmp(argv[1], test.name) != 0)
            continue;
        argv[1] = argv[0];
        return test.run(argc - 1, argv + 1);
    }
    std::fprintf(stderr, "%s TEST [FUNCTION ...] [OPTION ...]\n", argv[0]);
    for (const NamedTest &test : tests)
        std::fprintf(stderr, "    %s\n", test.name);
    return 2;
}

int harrowby::test::runFunctions(QObject &test, int argc, char **argv)
{
    const QStringList excepted = qEnvironmentVariable("HARROWBY_TEST_EXCEPT").split(u',', Qt::SkipEmptyParts);
    if (excepted.isEmpty() || argc > 1)
        return QTest::qExec(&test, argc, argv);
    QStringList functions = functionsOf(test);
    for (const QString &function : excepted) {
        if (!functions.removeOne(function))
            qFatal("there is no function %s", qPrintable(function));
    }
    return QTest::qExec(&test, QStringList(QString::fromLocal8Bit(argv[0])) + functions);
}
