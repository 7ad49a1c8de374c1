// SPDX-License-Identifier: MIT
#include "app/records/shop_settings.h"
#include "app/records/sqlite_records.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class ShopSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void settings();
    void settingsOfOnePrefix();
    void settingThatCannotBeSavedStays();

private:
    [[nodiscard]] QString read(const QString &select) const { return readText(m_database.get(), select); }

    QTemporaryDir m_folder;
    SqliteDatabase m_database;
    std::unique_ptr<SqliteRecords> m_records;
    QList<DbFailure> m_told;
};

void ShopSettingsTest::init()
{
    const QString path = m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction()) + u".sqlite"_s);
    makeStore(path);
    QVERIFY(!into(m_database, openDatabase(path, OpenMode::Write)));
    m_records = std::make_unique<SqliteRecords>(m_database.get());
    m_told.clear();
    m_records->setFailureHandler([this](const DbFailure &failure) { m_told << failure; });
}

void ShopSettingsTest::cleanup()
{
    m_records.reset();
    m_database.reset();
}

void ShopSettingsTest::settings()
{
    ShopSettings shop(*m_records);
    QCOMPARE(shop.value(u"Search"_s, u"off"_s), u"off"_s);
    QVERIFY(!shop.save(u"Search"_s, u"on"_s));
    QVERIFY(!shop.save(u"Search"_s, u"it's on"_s));
    QCOMPARE(shop.value(u"Search"_s, u"off"_s), u"it's on"_s);
    QCOMPARE(read(u"select count(*) from HarrowbySetting"_s), u"1"_s);
    QVERIFY(!shop.remove(u"Search"_s));
    QCOMPARE(shop.value(u"Search"_s, u"off"_s), u"off"_s);
}

void ShopSettingsTest::settingsOfOnePrefix()
{
    ShopSettings shop(*m_records);
    for (const auto &[name, value] : {std::pair(u"Rule.21"_s, u"b"_s), {u"Rule.02"_s, u"a"_s}, {u"Rul"_s, u"c"_s}})
        QVERIFY(!shop.save(name, value));
    const auto rules = shop.startingWith(u"Rule."_s);
    QVERIFY(rules);
    QCOMPARE(*rules, (QList<std::pair<QString, QString>>{{u"02"_s, u"a"_s}, {u"21"_s, u"b"_s}}));
}

void ShopSettingsTest::settingThatCannotBeSavedStays()
{
    ShopSettings shop(*m_records);
    QVERIFY(!shop.save(u"Search"_s, u"on"_s));
    QVERIFY(!runSql(m_database.get(), u"create trigger refuse before insert on HarrowbySetting "
                                      "begin select raise(abort, 'never'); end"_s));
    const auto failure = shop.save(u"Search"_s, u"off"_s);
    QVERIFY(failure);
    QCOMPARE(failure->reason, u"never"_s);
    QCOMPARE(shop.value(u"Search"_s), u"on"_s);
    QCOMPARE(m_told.size(), 1);
}

HARROWBY_CORE_TEST(app_shop_settings_test, ShopSettingsTest)
#include "shop_settings_test.moc"
