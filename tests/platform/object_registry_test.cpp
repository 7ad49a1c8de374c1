// SPDX-License-Identifier: MIT
#include "platform/object_registry.h"

#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

namespace {

ObjectRegistry::Factory named(const QString &name)
{
    return [name] {
        auto object = std::make_unique<QObject>();
        object->setObjectName(name);
        return object;
    };
}

} // namespace

class ObjectRegistryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUnknownIdentifierGivesNothing()
    {
        const ObjectRegistry registry;
        QVERIFY(!registry.create(u"HarrowReport.ReportDll"_s));
    }

    void createsANewObjectEachTime()
    {
        ObjectRegistry registry;
        registry.add(u"HarrowReport.ReportDll"_s, named(u"report"_s));
        const auto first = registry.create(u"HarrowReport.ReportDll"_s);
        const auto second = registry.create(u"HarrowReport.ReportDll"_s);
        QVERIFY(first && second && first != second);
        QCOMPARE(first->objectName(), u"report"_s);
    }

    void theLastFactoryCounts()
    {
        ObjectRegistry registry;
        registry.add(u"A.B"_s, named(u"old"_s));
        registry.add(u"A.B"_s, named(u"new"_s));
        QCOMPARE(registry.create(u"A.B"_s)->objectName(), u"new"_s);
    }

    void anEmptyFactoryGivesNothing()
    {
        ObjectRegistry registry;
        registry.add(u"A.B"_s, {});
        QVERIFY(!registry.create(u"A.B"_s));
    }
};

QTEST_GUILESS_MAIN(ObjectRegistryTest)
#include "object_registry_test.moc"
