// SPDX-License-Identifier: MIT
#include "platform/object_registry.h"

#include "tests/platform/log_capture.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <stdexcept>

#include <dlfcn.h>

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

/// A folder with a copy of each plugin: Qt keeps a loaded plugin by its path, and these paths are new.
class PluginFolder
{
public:
    PluginFolder()
    {
        copy(QStringLiteral(OBJECT_PLUGIN), u"object.so"_s);
        copy(QStringLiteral(OTHER_PLUGIN), u"other.so"_s);
        write(u"broken.so"_s, QByteArray(5000, 'x'));
        write(u"empty.so"_s, {});
        write(u"notes.txt"_s, "no library");
    }
    [[nodiscard]] QString path() const { return m_folder.path(); }
    [[nodiscard]] bool isLoaded(const QString &file) const
    {
        void *library = dlopen(QFile::encodeName(m_folder.filePath(file)).constData(), RTLD_NOLOAD | RTLD_LAZY);
        if (library != nullptr)
            dlclose(library);
        return library != nullptr;
    }
    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

private:
    void copy(const QString &from, const QString &name) const { QVERIFY(QFile::copy(from, m_folder.filePath(name))); }

    QTemporaryDir m_folder;
};

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
        registry.add(u"a.b"_s, named(u"new"_s));
        QCOMPARE(registry.create(u"A.B"_s)->objectName(), u"new"_s);
    }

    void anEmptyFactoryGivesNothing()
    {
        ObjectRegistry registry;
        registry.add(u"A.B"_s, {});
        QVERIFY(!registry.create(u"A.B"_s));
    }

    void identifiersAreComparedWithoutCase()
    {
        ObjectRegistry registry;
        registry.add(u"HarrowReport.ReportDll"_s, named(u"report"_s));
        QVERIFY(registry.create(u"HARROWREPORT.reportdll"_s));
        QVERIFY(!registry.create(u"HarrowReport.ReportDll "_s));
    }

    void aFactoryThatThrowsGivesNothing()
    {
        const testing::LogCapture log;
        ObjectRegistry registry;
        registry.add(u"A.B"_s, []() -> std::unique_ptr<QObject> { throw std::runtime_error("lost"); });
        registry.add(u"A.C"_s, []() -> std::unique_ptr<QObject> { throw 7; });
        QVERIFY(!registry.create(u"A.B"_s));
        QVERIFY(log.hasLine({u"A.B"_s, u"lost"_s}));
        QVERIFY(!registry.create(u"A.C"_s));
        QVERIFY(log.hasLine({u"A.C"_s}));
    }

    void aPluginIsFoundByItsMetadata_data()
    {
        QTest::addColumn<QString>("classId");
        QTest::newRow("as written") << u"Test.Object"_s;
        QTest::newRow("other case") << u"TEST.OBJECT"_s;
    }

    void aPluginIsFoundByItsMetadata()
    {
        QFETCH(const QString, classId);
        const PluginFolder folder;
        ObjectRegistry registry;
        registry.setPluginFolders({folder.path()});
        const auto first = registry.create(classId);
        const auto second = registry.create(classId);
        QVERIFY(first && second && first != second);
        QCOMPARE(first->objectName(), u"from the plugin"_s);
        QCOMPARE(first->parent(), nullptr);
    }

    void onlyThePluginThatNamesItIsLoaded()
    {
        const PluginFolder folder;
        ObjectRegistry registry;
        registry.setPluginFolders({folder.path()});
        QVERIFY(!registry.create(u"Test.Unknown"_s));
        QVERIFY(!folder.isLoaded(u"object.so"_s) && !folder.isLoaded(u"other.so"_s));
        QVERIFY(registry.create(u"Test.Object"_s));
        QVERIFY(folder.isLoaded(u"object.so"_s) && !folder.isLoaded(u"other.so"_s));
    }

    void whatFailsIsLoggedAndGivesNothing_data()
    {
        QTest::addColumn<QString>("classId");
        QTest::addColumn<QStringList>("said");
        QTest::newRow("a null") << u"Test.Nothing"_s << QStringList{u"object.so"_s, u"Test.Nothing"_s};
        QTest::newRow("an exception") << u"Test.Throws"_s << QStringList{u"object.so"_s, u"no ink"_s};
        QTest::newRow("no factory") << u"Test.Other"_s << QStringList{u"other.so"_s, u"Test.Other"_s};
        QTest::newRow("a broken file") << u"Test.Unknown"_s << QStringList{u"broken.so"_s};
        QTest::newRow("an empty file") << u"Test.Unknown"_s << QStringList{u"empty.so"_s};
    }

    void whatFailsIsLoggedAndGivesNothing()
    {
        QFETCH(const QString, classId);
        QFETCH(const QStringList, said);
        const testing::LogCapture log;
        const PluginFolder folder;
        ObjectRegistry registry;
        registry.setPluginFolders({folder.path()});
        QVERIFY(!registry.create(classId));
        QVERIFY2(log.hasLine(said), qPrintable(log.lines().join(u'\n')));
        QVERIFY(!log.hasLine({u"notes.txt"_s}));
    }

    void aFactoryComesBeforeAPlugin()
    {
        const PluginFolder folder;
        ObjectRegistry registry;
        registry.setPluginFolders({folder.path()});
        registry.add(u"test.object"_s, named(u"the host's"_s));
        QCOMPARE(registry.create(u"Test.Object"_s)->objectName(), u"the host's"_s);
        registry.add(u"Test.Object"_s, {});
        QVERIFY(!registry.create(u"Test.Object"_s));
    }

    void foldersAreSearchedInOrder()
    {
        const PluginFolder first;
        const PluginFolder second;
        ObjectRegistry registry;
        registry.setPluginFolders({u"/nowhere/at all"_s, first.path(), second.path()});
        QVERIFY(registry.create(u"Test.Object"_s));
        QVERIFY(first.isLoaded(u"object.so"_s) && !second.isLoaded(u"object.so"_s));
    }

    void noFolderMeansNoPlugin()
    {
        const PluginFolder folder;
        ObjectRegistry registry;
        registry.setPluginFolders({folder.path()});
        registry.setPluginFolders({});
        QVERIFY(!registry.create(u"Test.Object"_s));
    }

    void theProcessHasOneRegistryAndLooksBesideTheProgram()
    {
        QCOMPARE(ObjectRegistry::native().get(), ObjectRegistry::native().get());
        const QString plugin = QCoreApplication::applicationDirPath() + u"/plugins/registry-test.so"_s;
        QVERIFY(QDir().mkpath(QFileInfo(plugin).path()));
        QFile::remove(plugin);
        QVERIFY(QFile::copy(QStringLiteral(OBJECT_PLUGIN), plugin));
        const auto made = ObjectRegistry::native()->create(u"Test.Object"_s);
        QFile::remove(plugin);
        QVERIFY(made);
    }
};

HARROWBY_CORE_TEST(object_registry_test, ObjectRegistryTest)
#include "object_registry_test.moc"
