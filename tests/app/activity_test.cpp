// SPDX-License-Identifier: MIT
#include "app/activity/activity_search.h"
#include "app/records/deeds.h"
#include "tests/app/shop_place.h"
#include "tests/app/store_files.h"
#include "tests/doubles/shop_file.h"
#include "tests/program/test_program.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class ActivityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void textsOfTheLogHaveTheirKinds();
    void everyDeedHasAKindAndEveryKindAName();
    void allThatHappenedIsOneListNewestFirst();
    void pagesLoseAndRepeatNothing();
    void timesThatAreNumbersAreListedOnce();
    void daysAreLocalAndBothIncluded();
    void oneKindIsFound();
    void oneUserIsFoundWhereTheUserIsKnown();
    void textIsFoundAnywhere();
    void linesWithoutATimeComeLast();
    void whoStopsGoesOnFromThere();
    void failureIsTold();
    void usersOfStoreAndDeedsAreOffered();
    void ownConnectionReads();

private:
    void log(const QString &text, const QString &when);
    void deed(const QString &kind, const QString &who, const QString &what, const QString &localTime);
    void opening(const QString &who, const QString &reason, const QString &localTime);
    [[nodiscard]] QStringList found(const ActivityFilter &filter, int most = 1000);

    QTemporaryDir m_folder;
    QString m_path;
    std::unique_ptr<ShopPlace> m_place;
    std::unique_ptr<OpenShop> m_shop;
    std::shared_ptr<Records> m_records;
};

namespace {

const WorkWatch goOn = [](const WorkStep &) { return true; };

QString utc(const QString &localTime)
{
    return recordTime(QDateTime::fromString(localTime, u"yyyy-MM-dd HH:mm:ss"_s));
}

} // namespace

void ActivityTest::init()
{
    m_place =
        std::make_unique<ShopPlace>(m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction()) + u".db"_s));
    m_path = m_place->address();
    makeStore(m_path);
    m_shop = std::make_unique<OpenShop>(m_path);
    m_shop->run(u"pragma synchronous = off"_s);
    m_records = m_shop->records();
}

void ActivityTest::cleanup()
{
    m_records.reset();
    m_shop.reset();
    m_place.reset();
}

void ActivityTest::log(const QString &text, const QString &when)
{
    m_shop->run(u"insert into SysUsage (SystemUsage, Times, Dates) values (%1, %2, %2)"_s.arg(
        harrowby::test::quoted(text), harrowby::test::quoted(when)));
}

void ActivityTest::deed(const QString &kind, const QString &who, const QString &what, const QString &localTime)
{
    RecordStatement statement = Deeds(*m_records, u"office"_s).statement({kind, who, what});
    statement.values[1] = utc(localTime);
    QVERIFY(m_records->write(kept::activity(), statement));
}

void ActivityTest::opening(const QString &who, const QString &reason, const QString &localTime)
{
    QVERIFY(m_records->write(
        kept::drawerOpening(),
        {u"insert into HarrowbyDrawerOpening (OpeningID, OpenedAt, OpenedBy, Drawer, Reason) values (?, ?, ?, ?, ?)"_s,
         {reason, utc(localTime), who, u"DESK 1"_s, reason}}));
}

/// What each says; those of the till's log by their texts.
QStringList ActivityTest::found(const ActivityFilter &filter, int most)
{
    ActivitySearch search(filter);
    QStringList all;
    while (!search.isAtEnd()) {
        const auto entries = search.next(*m_records, most, goOn);
        if (!entries)
            return {u"failed: "_s + entries.error().reason};
        for (const ActivityEntry &entry : *entries)
            all << entry.what;
    }
    return all;
}

void ActivityTest::textsOfTheLogHaveTheirKinds()
{
    using Kind = ActivityKind;
    struct Line
    {
        QString text;
        Kind kind;
        QString who = {};
    };
    const QList<Line> lines = {
        {u"ANNA successfully logged in!"_s, Kind::Login, u"ANNA"_s},
        {u"ANNA logged out successfully!"_s, Kind::Login, u"ANNA"_s},
        {u"ITEM [X] deleted! successfully logged in!"_s, Kind::Login, u"ITEM [X] deleted!"_s}, // a user of that name
        {u"A1  |  TEA Added to Cart!"_s, Kind::Cart},
        {u"2 of A1  |  TEA Added to Cart!"_s, Kind::Cart},
        {u"3 of A1  |  TEA Added!"_s, Kind::Cart},
        {u"Item [A1  |  TEA] deleted!"_s, Kind::Cart},
        {u"Item [] deleted!"_s, Kind::Cart},
        {u"Cost of Item A1  |  TEA changed to 2.00!"_s, Kind::PriceByHand},
        {u"2 item(s) of Total Cost 1,250.00 Purchased."_s, Kind::Sale},
        {u"Last Purchased Undone!"_s, Kind::Deletion},
        {u"Stock [TEA] with A1 has been deleted!"_s, Kind::Deletion},
        {u"Category [DRINKS] Deleted!"_s, Kind::Deletion},
        {u"Stock [TEA] with ID [A1] has been added successfully."_s, Kind::Stock},
        {u"Stock [TEA] with ID [A1] has been updated successfully."_s, Kind::Stock},
        {u"Stock List Refreshed."_s, Kind::Stock},
        {u"5 New item(s) to Stock [A1  |  TEA]. New Available Stock is 12."_s, Kind::Stock},
        {u"Item(s) Removed from Stock [A1  |  TEA]. New Available Stock is 7."_s, Kind::Stock},
        {u"Category [DRINKS] Added!"_s, Kind::Stock},
        {u"Category Name Changed!"_s, Kind::Stock},
        {u"Setting Saved!"_s, Kind::Settings},
        {u"Activity Cleared!"_s, Kind::Settings},
        {u"What another program says"_s, Kind::Other},
        {u""_s, Kind::Other},
    };
    for (const Line &line : lines) {
        const LogMeaning meaning = meaningOfLog(line.text);
        QVERIFY2(meaning.kind == line.kind && meaning.who == line.who, qPrintable(line.text));
        QVERIFY(isInLog(line.kind));
    }
}

void ActivityTest::everyDeedHasAKindAndEveryKindAName()
{
    for (const QLatin1StringView kind :
         {deed::priceByHand,    deed::drawerOpened, deed::itemDeleted,    deed::purchaseDeleted, deed::purchaseUndone,
          deed::rightsChanged,  deed::userAdded,    deed::passwordSet,    deed::loginRefused,    deed::loggedIn,
          deed::settingChanged, deed::codeChanged,  deed::paymentSettled, deed::imported,        deed::importTakenBack,
          deed::exported,       deed::backedUp,     deed::restored,       deed::labelsPrinted,   deed::stockNotChanged,
          deed::stockOfRenamed})
        QVERIFY2(kindOfDeed(kind) != ActivityKind::Other, kind.data());
    QCOMPARE(kindOfDeed(u"OfALaterVersion"_s), ActivityKind::Other);
    for (int kind = 0; kind <= static_cast<int>(ActivityKind::Other); ++kind)
        QVERIFY(!titleOf(static_cast<ActivityKind>(kind)).isEmpty());
    QVERIFY(!isInLog(ActivityKind::Users) && !isInLog(ActivityKind::Drawer) && !isInLog(ActivityKind::LoginRefused));
}

void ActivityTest::allThatHappenedIsOneListNewestFirst()
{
    log(u"ANNA successfully logged in!"_s, u"2026-03-05 08:00:00"_s);
    log(u"Setting Saved!"_s, u"2026-03-05 12:00:00"_s);
    deed(deed::priceByHand, u"ANNA"_s, u"cheap"_s, u"2026-03-05 09:00:00"_s);
    opening(u"BOB"_s, u"change"_s, u"2026-03-05 10:00:00"_s);
    deed(deed::exported, u"BOB"_s, u"items"_s, u"2026-03-05 13:00:00"_s);
    ActivitySearch search({});
    const auto entries = search.next(*m_records, 10, goOn).value_or(QList<ActivityEntry>());
    QStringList rows;
    for (const ActivityEntry &entry : entries)
        rows << QStringList{entry.when, titleOf(entry.kind), entry.who, entry.place, entry.what}.join(u'|');
    QCOMPARE(rows,
             (QStringList{u"2026-03-05 13:00:00|Catalogue and codes|BOB|office|items"_s,
                          u"2026-03-05 12:00:00|Settings||till|Setting Saved!"_s,
                          u"2026-03-05 10:00:00|Drawer opened|BOB|till DESK 1|The drawer was opened by hand: change"_s,
                          u"2026-03-05 09:00:00|Price changed by hand|ANNA|office|cheap"_s,
                          u"2026-03-05 08:00:00|Login and logout|ANNA|till|ANNA successfully logged in!"_s}));
    QVERIFY(search.isAtEnd());
}

void ActivityTest::pagesLoseAndRepeatNothing()
{
    // More of one second than a page has, and pages that end in the middle of others.
    m_shop->run(u"with recursive n(i) as (select 1 union all select i + 1 from n where i < 7000) "
                "insert into SysUsage select 'row ' || i, '', case when i between 100 and 5800 then "
                "'2026-03-05 08:00:00' else datetime('2026-03-06', '-' || (i / 3) || ' seconds') end from n"_s);
    for (const int most : {7, 333, 1000}) {
        QStringList all = found({}, most);
        QCOMPARE(all.size(), 7000);
        all.removeDuplicates();
        QCOMPARE(all.size(), 7000);
    }
}

/// Of another program: SQLite has every number before every text.
void ActivityTest::timesThatAreNumbersAreListedOnce()
{
    for (const QString &text :
         {u"drop table SysUsage"_s, u"create table SysUsage (SystemUsage, Times, Dates)"_s,
          u"with recursive n(i) as (select 1 union all select i + 1 from n where i < 350) insert into SysUsage select "
          "'row ' || i, '', case when i > 200 then i else datetime('2026-03-06', '-' || i || ' seconds') end from n"_s})
        m_shop->run(text);
    QStringList all = found({});
    QCOMPARE(all.size(), 350);
    all.removeDuplicates();
    QCOMPARE(all.size(), 350);
}

void ActivityTest::daysAreLocalAndBothIncluded()
{
    for (const auto &when :
         {u"2026-03-04 23:59:59"_s, u"2026-03-05 00:00:00"_s, u"2026-03-06 23:59:59"_s, u"2026-03-07 00:00:00"_s}) {
        log(u"log "_s + when, when);
        deed(deed::exported, {}, u"deed "_s + when, when);
        opening({}, when, when);
    }
    const auto both = found({{QDate(2026, 3, 5), QDate(2026, 3, 6)}, {}, {}, false, {}});
    QCOMPARE(both.size(), 6);
    for (const QString &what : both)
        QVERIFY2(what.contains(u"-05 00:00:00"_s) || what.contains(u"-06 23:59:59"_s), qPrintable(what));
    QCOMPARE(found({{QDate(2026, 3, 6), {}}, {}, {}, false, {}}).size(), 6);
    QCOMPARE(found({{{}, QDate(2026, 3, 4)}, {}, {}, false, {}}).size(), 3);
}

void ActivityTest::oneKindIsFound()
{
    log(u"Stock [TEA] with A1 has been deleted!"_s, u"2026-03-05 08:00:00"_s);
    log(u"Setting Saved!"_s, u"2026-03-05 09:00:00"_s);
    deed(deed::itemDeleted, u"ANNA"_s, u"gone"_s, u"2026-03-05 08:00:01"_s);
    opening(u"ANNA"_s, u"change"_s, u"2026-03-05 10:00:00"_s);
    QCOMPARE(found({{}, ActivityKind::Deletion, {}, false, {}}),
             (QStringList{u"gone"_s, u"Stock [TEA] with A1 has been deleted!"_s}));
    QCOMPARE(found({{}, ActivityKind::Drawer, {}, false, {}}), QStringList{u"The drawer was opened by hand: change"_s});
    QCOMPARE(found({{}, ActivityKind::Users, {}, false, {}}), QStringList());
}

void ActivityTest::oneUserIsFoundWhereTheUserIsKnown()
{
    log(u"ANNA successfully logged in!"_s, u"2026-03-05 08:00:00"_s);
    log(u"1 of A1  |  TEA Added to Cart!"_s, u"2026-03-05 08:01:00"_s); // perhaps hers: the log does not say
    log(u"BOB successfully logged in!"_s, u"2026-03-05 08:02:00"_s);
    log(u"ANNA logged out successfully!"_s, u"2026-03-05 08:03:00"_s);
    deed(deed::priceByHand, u"ANNA"_s, u"cheap"_s, u"2026-03-05 09:00:00"_s);
    deed(deed::priceByHand, u"BOB"_s, u"cheaper"_s, u"2026-03-05 09:00:00"_s);
    deed(deed::loginRefused, {}, u"somebody"_s, u"2026-03-05 09:30:00"_s);
    opening(u"anna"_s, u"change"_s, u"2026-03-05 10:00:00"_s);
    QCOMPARE(found({{}, {}, u"anna"_s, false, {}}),
             (QStringList{u"The drawer was opened by hand: change"_s, u"cheap"_s, u"ANNA logged out successfully!"_s,
                          u"ANNA successfully logged in!"_s}));
    QCOMPARE(found({{}, {}, {}, true, {}}), (QStringList{u"somebody"_s, u"1 of A1  |  TEA Added to Cart!"_s}));
}

void ActivityTest::textIsFoundAnywhere()
{
    log(u"1 of A1  |  GRÜNTEE Added to Cart!"_s, u"2026-03-05 08:00:00"_s);
    log(u"1 of A2  |  MILK Added to Cart!"_s, u"2026-03-05 09:00:00"_s);
    deed(deed::priceByHand, u"GRÜN"_s, u"100% of it?"_s, u"2026-03-05 10:00:00"_s);
    QCOMPARE(found({{}, {}, {}, false, u"grün"_s}),
             (QStringList{u"100% of it?"_s, u"1 of A1  |  GRÜNTEE Added to Cart!"_s}));
    QCOMPARE(found({{}, {}, {}, false, u"0% of"_s}), QStringList{u"100% of it?"_s});
    QCOMPARE(found({{}, {}, {}, false, u"OFFICE"_s}), QStringList{u"100% of it?"_s});
}

void ActivityTest::linesWithoutATimeComeLast()
{
    log(u"dated"_s, u"1999-01-01 00:00:00"_s);
    m_shop->run(u"insert into SysUsage values ('b', null, null), ('a', null, null)"_s);
    QCOMPARE(found({}), (QStringList{u"dated"_s, u"a"_s, u"b"_s}));
    QCOMPARE(found({{QDate(1990, 1, 1), {}}, {}, {}, false, {}}), QStringList{u"dated"_s});
}

void ActivityTest::whoStopsGoesOnFromThere()
{
    m_shop->run(u"with recursive n(i) as (select 1 union all select i + 1 from n where i < 4500) "
                "insert into SysUsage select case i when 1 then 'sought' else 'x' end, '', "
                "datetime('2026-03-05', i || ' seconds') from n"_s);
    ActivitySearch search({{}, {}, {}, false, u"sought"_s});
    QStringList steps;
    const auto none = search.next(*m_records, 10, [&](const WorkStep &step) {
        steps << step.words;
        return steps.size() < 3;
    });
    QVERIFY(none && none->isEmpty() && !search.isAtEnd());
    QCOMPARE(steps, QStringList(3, u"Looking back \u2026 2026-03-05"_s));
    const auto rest = search.next(*m_records, 10, [&](const WorkStep &step) {
        steps << step.words;
        return true;
    });
    QCOMPARE(rest.value_or(QList<ActivityEntry>()).size(), 1);
    QVERIFY(search.isAtEnd());
    QCOMPARE(steps.size(), 4); // not from the beginning
}

void ActivityTest::failureIsTold()
{
    m_shop->run(u"drop table SysUsage"_s);
    QCOMPARE(found({}), QStringList{u"failed: no such table: SysUsage"_s});
}

void ActivityTest::usersOfStoreAndDeedsAreOffered()
{
    m_shop->run(u"insert into Users (Username) values ('zoe'), ('ANNA'), (''), (null)"_s);
    deed(deed::exported, u"command line (night)"_s, u"items"_s, u"2026-03-05 08:00:00"_s);
    deed(deed::exported, u"Anna"_s, u"items"_s, u"2026-03-05 08:00:00"_s);
    QStringList users = usersOfActivity(*m_records).value_or(QStringList());
    users.removeAll(u"ADMINISTRATOR"_s);
    QCOMPARE(users, (QStringList{u"ANNA"_s, u"command line (night)"_s, u"zoe"_s}));
}

void ActivityTest::ownConnectionReads()
{
    log(u"here"_s, u"2026-03-05 08:00:00"_s);
    QStringList all;
    const auto done = withOwnRecords(m_path, goOn, [&](Records &records, const WorkWatch &) {
        ActivitySearch search({});
        const auto entries = search.next(records, 10, goOn).value_or(QList<ActivityEntry>());
        for (const ActivityEntry &entry : entries)
            all << entry.what;
    });
    QCOMPARE(reasonOf(done), QString());
    QCOMPARE(all, QStringList{u"here"_s});
    const auto none = withOwnRecords(m_folder.filePath(u"none/none.db"_s), goOn,
                                     [](Records &, const WorkWatch &) { QFAIL("no such file"); });
    QVERIFY(!none);
}

HARROWBY_CORE_TEST(app_activity_test, ActivityTest)
#include "activity_test.moc"
