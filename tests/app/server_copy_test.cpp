// SPDX-License-Identifier: MIT
#include "app/backup/store_transfer.h"
#include "app/copy/server_copy.h"
#include "app/copy/unfit_words.h"
#include "app/records/server_engine.h"
#include "app/records/sqlite_records.h"
#include "app/records/store_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"
#include "tests/app/full_store.h"
#include "tests/app/server_desk.h"
#include "tests/app/store_files.h"
#include "tests/doubles/proxy.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace harrowby::test;
using namespace std::chrono_literals;

using How = TransferEnd::Outcome;

namespace {

bool goOnCopying(const WorkStep &)
{
    return true;
}

} // namespace

/// A whole store from a file to a real server, and back.
class ServerCopyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_desk->begin(); }

    void storeGoesToAServerAndBack();
    void figuresOfImportsKeepAllDigits();
    void newRowsGetIdentitiesAboveTheCopied();
    void serverThatIsNotEmptyIsRefused();
    void fileThatIsThereIsRefused();
    void fileThatIsOpenIsRefused();
    void serverThatIsOpenIsRefused();
    void serverThatIsWrittenMeanwhileIsRefused();
    void rowsThatDoNotFitAreToldBeforeAnythingIsWritten();
    void missingStoresAreTold();
    void copyThatBreaksOffLeavesAnEmptyServer();
    void stopLeavesAnEmptyServer();
    void serverThatDiesAndComesBackGetsTheWholeStore();
    void foreignPartsOfAFileAreNamed();
    void lostAnswersAtTheEndAreFoundOut();
    void copyWhoseEndIsUnknownIsToldAndFoundOut_data();
    void copyWhoseEndIsUnknownIsToldAndFoundOut();
    void allSequencesGoOn();
    void listsOfTheCopyAreThoseOfTheOriginal_data();
    void listsOfTheCopyAreThoseOfTheOriginal();
    void changedRowIsFound();

private:
    [[nodiscard]] QString throughCable(const Proxy &cable) const
    {
        return u"postgresql://postgres@127.0.0.1:%1/%2?sslmode=disable"_s.arg(cable.port()).arg(m_desk->database());
    }

    std::unique_ptr<ServerDesk> m_desk;
};

void ServerCopyTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    const auto engine = serverEngine();
    QVERIFY2(engine, engine ? "" : qPrintable(engine.error()));
    m_desk = std::make_unique<ServerDesk>();
}

void ServerCopyTest::storeGoesToAServerAndBack()
{
    m_desk->fill();
    const QStringList rows = everyRow(m_desk->path(u"full.sqlite"_s));
    QVERIFY(rows.size() > 300);
    QCOMPARE(m_desk->everyRow(), rows);
    const TransferEnd back = copyServerToFile(m_desk->target(), m_desk->path(u"back.sqlite"_s), goOnCopying);
    QVERIFY2(back.outcome == How::Done, qPrintable(back.problem));
    QCOMPARE(back.rows.value(u"StockList"_s), 23);
    QCOMPARE(everyRow(m_desk->path(u"back.sqlite"_s)), rows);
    BusyWait wait;
    const auto problem = judgeStore(m_desk->path(u"back.sqlite"_s), wait);
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
}

/// They are texts in a file.
void ServerCopyTest::figuresOfImportsKeepAllDigits()
{
    m_desk->fill();
    m_desk->sql(u"update harrowby.HarrowbyImportRow set OldCost = 0.30000000000000004, NewLevel = 1e300"_s);
    const TransferEnd back = copyServerToFile(m_desk->target(), m_desk->path(u"back.sqlite"_s), goOnCopying);
    QVERIFY2(back.outcome == How::Done, qPrintable(back.problem));
    QCOMPARE(column(m_desk->path(u"back.sqlite"_s), u"select distinct OldCost from HarrowbyImportRow"_s),
             QStringList(u"0.30000000000000004"_s));
}

void ServerCopyTest::newRowsGetIdentitiesAboveTheCopied()
{
    m_desk->fill();
    QVERIFY(m_desk->cluster.trySql(u"insert into harrowby.StockList (StockID) values ('NEW')"_s, m_desk->database()));
    QCOMPARE(m_desk->cluster.sql(u"select rowid_ from harrowby.StockList where StockID = 'NEW'"_s, m_desk->database()),
             QStringList(QString::number(22 * 22 + 4)));
}

void ServerCopyTest::serverThatIsNotEmptyIsRefused()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    QVERIFY(m_desk->cluster.trySql(u"insert into harrowby.SysUsage (Times) values ('1'), ('2')"_s, m_desk->database()));
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"It has rows in: SysUsage (2).\n"_s), qPrintable(end.problem));
    QCOMPARE(m_desk->countOf(u"SysUsage"_s), u"2"_s);
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"0"_s);
}

void ServerCopyTest::fileThatIsThereIsRefused()
{
    makeStore(m_desk->path(u"there.sqlite"_s));
    const Bytes before = bytesOf(m_desk->path(u"there.sqlite"_s));
    const TransferEnd end = copyServerToFile(m_desk->target(), m_desk->path(u"there.sqlite"_s), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"already"_s), qPrintable(end.problem));
    QVERIFY(bytesOf(m_desk->path(u"there.sqlite"_s)) == before);
}

void ServerCopyTest::fileThatIsOpenIsRefused()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    SqliteDatabase till;
    QVERIFY(!into(till, openDatabase(m_desk->path(u"full.sqlite"_s), OpenMode::Write)));
    QVERIFY(!runSql(till.get(), u"select count(*) from StockList"_s));
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"the copying needs the store for itself"_s), qPrintable(end.problem));
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"0"_s);
}

void ServerCopyTest::serverThatIsOpenIsRefused()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    auto till = openStoreRecords(m_desk->target(u"till_one"_s), Access::Read);
    QVERIFY2(till, till ? "" : qPrintable(till.error()));
    for (const TransferEnd &end : {copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), goOnCopying),
                                   copyServerToFile(m_desk->target(), m_desk->path(u"back.sqlite"_s), goOnCopying)}) {
        QCOMPARE(end.outcome, How::Failed);
        QVERIFY2(end.problem.contains(u"which have logged in as: till_one."_s), qPrintable(end.problem));
    }
    QVERIFY(!QFile::exists(m_desk->path(u"back.sqlite"_s)));
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"0"_s);
}

/// By a till that has come and gone.
void ServerCopyTest::serverThatIsWrittenMeanwhileIsRefused()
{
    m_desk->fill();
    bool isSold = false;
    const QString file = m_desk->path(u"back.sqlite"_s);
    const TransferEnd end = copyServerToFile(m_desk->target(), file, [&](const WorkStep &step) {
        if (step.words == comparingWords && !std::exchange(isSold, true))
            m_desk->sql(u"insert into harrowby.SysUsage (Times) values ('late')"_s);
        return true;
    });
    QVERIFY(isSold);
    QCOMPARE(end.outcome, How::Failed);
    QCOMPARE(end.problem,
             u"Nothing was copied. Another program has written into the store meanwhile: SysUsage\nClose the "
             "tills and offices, then do it once more."_s);
    QVERIFY(!QFile::exists(file));
}

void ServerCopyTest::rowsThatDoNotFitAreToldBeforeAnythingIsWritten()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    runAll(m_desk->path(u"full.sqlite"_s),
           {u"update StockList set StockCost = 'cheap' where rowid = 3"_s,
            u"update StockList set StockName = 'a' || char(0) || 'b' where rowid = 4"_s,
            u"update PurchaseCart set PurchaseID = hex(randomblob(1400)) where rowid = 7"_s,
            u"update HarrowbyCode set Units = 3000000000 where rowid = 2"_s});
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), goOnCopying);
    QCOMPARE(end.outcome, How::RowsRefused);
    QCOMPARE(end.unfit.count, 4);
    const QString words = unfitWords(end.unfit, 9);
    QVERIFY2(words.contains(u"StockList, row 3, Tea: a column of figures on a server holds no text (StockCost)"_s),
             qPrintable(words));
    QVERIFY2(words.contains(u"StockList, row 4, caf\u00e9 \u00d1: a text on a server holds no NUL (StockName)"_s),
             qPrintable(words));
    QVERIFY2(words.contains(u"has at most 2600 bytes (PurchaseID)"_s), qPrintable(words));
    QVERIFY2(words.contains(u"HarrowbyCode, 1 caf"_s), qPrintable(words));
    QCOMPARE(m_desk->countOf(u"StockList"_s), u"0"_s);
}

void ServerCopyTest::missingStoresAreTold()
{
    const TransferEnd noFile = copyFileToServer(m_desk->path(u"none.sqlite"_s), m_desk->target(), goOnCopying);
    QCOMPARE(noFile.outcome, How::NotOpened);
    QVERIFY2(noFile.problem.contains(u"There is no store file"_s), qPrintable(noFile.problem));
    makeStore(m_desk->path(u"one.sqlite"_s));
    const TransferEnd noServer = copyFileToServer(m_desk->path(u"one.sqlite"_s),
                                                  m_desk->cluster.conninfo(u"postgres"_s, u"nowhere"_s), goOnCopying);
    QCOMPARE(noServer.outcome, How::NotOpened);
    QVERIFY2(noServer.problem.contains(u"nowhere"_s), qPrintable(noServer.problem));
}

/// What a trigger refuses stands for whatever ends a copy in the middle.
void ServerCopyTest::copyThatBreaksOffLeavesAnEmptyServer()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    m_desk->cluster.sql(
        u"create function harrowby.refuse() returns trigger language plpgsql as $$ begin raise exception 'the disk "
        "is full'; end $$; create trigger refuse before insert on harrowby.HarrowbyPayment execute function "
        "harrowby.refuse()"_s,
        m_desk->database());
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), goOnCopying);
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"HarrowbyPayment: "_s) && end.problem.contains(u"the disk is full"_s),
             qPrintable(end.problem));
    QCOMPARE(m_desk->everyRow(), QStringList());
}

void ServerCopyTest::stopLeavesAnEmptyServer()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    int left = 40;
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(),
                                             [&](const WorkStep &) { return left-- > 0; });
    QCOMPARE(end.outcome, How::Stopped);
    QVERIFY(left < 0);
    QCOMPARE(m_desk->everyRow(), QStringList());
    QCOMPARE(copyServerToFile(m_desk->target(), m_desk->path(u"back.sqlite"_s), [](const WorkStep &) { return false; })
                 .outcome,
             How::Stopped);
    QCOMPARE(QDir(m_desk->folder()).entryList({u"back*"_s, u".harrowby*"_s}, QDir::AllEntries | QDir::Hidden),
             QStringList());
}

/// In the middle of the transaction.
void ServerCopyTest::serverThatDiesAndComesBackGetsTheWholeStore()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    int left = 40;
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), [&](const WorkStep &) {
        if (--left == 0) {
            m_desk->cluster.kill9();
            m_desk->cluster.start();
        }
        return true;
    });
    QVERIFY(left < 0);
    QVERIFY2(end.outcome == How::Done, qPrintable(end.problem));
    QCOMPARE(m_desk->everyRow(), everyRow(m_desk->path(u"full.sqlite"_s)));
}

void ServerCopyTest::foreignPartsOfAFileAreNamed()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    runAll(m_desk->path(u"full.sqlite"_s), {u"create table Suppliers (Name text)"_s});
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), goOnCopying);
    QVERIFY2(end.outcome == How::Done, qPrintable(end.problem));
    QCOMPARE(end.left, QStringList(u"table Suppliers"_s));
}

/// The commit's is the last one.
void ServerCopyTest::lostAnswersAtTheEndAreFoundOut()
{
    Proxy cable(m_desk->cluster.port());
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    const QStringList rows = everyRow(m_desk->path(u"full.sqlite"_s));
    int steps = 0;
    int trips = 0; // from the last step on
    const auto counting = [&](const WorkStep &) {
        ++steps;
        trips = cable.roundTrips();
        return true;
    };
    const auto copied = [&](const WorkWatch &watch) {
        return copyFileToServer(m_desk->path(u"full.sqlite"_s), throughCable(cable), watch);
    };
    QCOMPARE(copied(counting).problem, QString());
    const int last = cable.roundTrips() - trips;
    QVERIFY2(last >= 2, QByteArray::number(last));
    for (int lost = 1; lost <= last; ++lost) {
        m_desk->begin();
        makeFullStore(m_desk->path(u"full.sqlite"_s));
        int left = steps;
        const TransferEnd end = copied([&](const WorkStep &) {
            if (--left == 0)
                cable.loseAnswerOf(lost);
            return true;
        });
        QVERIFY(left <= 0);
        QVERIFY2(end.outcome == How::Done, qPrintable(QString::number(lost) + u": "_s + end.problem));
        QCOMPARE(m_desk->everyRow(), rows);
    }
}

void ServerCopyTest::copyWhoseEndIsUnknownIsToldAndFoundOut_data()
{
    QTest::addColumn<int>("answer"); // after which nothing is heard any more
    QTest::addColumn<bool>("isCopied");
    QTest::newRow("the commit's") << 2 << true;
    QTest::newRow("the one before it") << 1 << false;
}

void ServerCopyTest::copyWhoseEndIsUnknownIsToldAndFoundOut()
{
    QFETCH(const int, answer);
    QFETCH(const bool, isCopied);
    Proxy cable(m_desk->cluster.port());
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    const QTemporaryDir state;
    QList<bool> resolved;
    ServerOptions options;
    options.stateFolder = state.path();
    options.connecting = 300ms;
    options.silence = options.rest = 2s;
    options.resolvedHandler = [&](const QString &, WriteOutcome known) { resolved << (known == WriteOutcome::Done); };
    const auto engine = serverEngine();
    auto opened = (*engine)->open(throughCable(cable), options);
    QVERIFY2(opened, opened ? "" : qPrintable(opened.error().reason));
    auto server = *std::move(opened);
    auto records = server->records();
    SqliteDatabase file;
    QVERIFY(!into(file, openDatabase(m_desk->path(u"full.sqlite"_s), OpenMode::Write)));
    SqliteRecords from(file.get());
    const ColumnRules rules(**engine);
    const WorkWatch watch;
    StoreCopy copy(from, rules, watch);
    const auto silence = [&](Records &) { // the sequences follow, then the commit
        cable.goSilentAtAnswerOf(answer);
        return std::optional<CopyFailure>();
    };
    const auto rows = copyIntoServer(copy, *records, {ServerRows::MustBeNone, u"the copying"_s, {}, silence});
    QVERIFY(!rows);
    QCOMPARE(rows.error().isUnknown, isCopied);
    QVERIFY(!rows.error().problem.isEmpty());
    cable.speak();
    QTRY_VERIFY_WITH_TIMEOUT(!server->tryAgain(), 20'000);
    QCOMPARE(resolved, isCopied ? QList<bool>{true} : QList<bool>());
    records.reset();
    server.reset();
    file.reset();
    const TransferEnd again = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), {});
    QVERIFY2(again.outcome == (isCopied ? How::Failed : How::Done), qPrintable(again.problem));
    QCOMPARE(again.problem.contains(u"not empty"_s), isCopied);
    QCOMPARE(m_desk->everyRow(), everyRow(m_desk->path(u"full.sqlite"_s)));
}

void ServerCopyTest::allSequencesGoOn()
{
    m_desk->fill();
    for (const CopiedTable &table : copiedTables()) {
        if (table.isShops())
            QCOMPARE(m_desk->cluster
                         .sql(u"insert into harrowby.%1 default values returning rowid_"_s.arg(table.name),
                              m_desk->database())
                         .value(0),
                     QString::number(22 * 22 + 4));
    }
    // And in a file that is made of it.
    const TransferEnd back = copyServerToFile(m_desk->target(), m_desk->path(u"back.sqlite"_s), {});
    QCOMPARE(back.problem, QString());
    runAll(m_desk->path(u"back.sqlite"_s), {u"insert into StockList (StockID) values ('NEWEST')"_s});
    QCOMPARE(column(m_desk->path(u"back.sqlite"_s), u"select max(rowid) from StockList"_s),
             QStringList(QString::number(22 * 22 + 5)));
}

void ServerCopyTest::listsOfTheCopyAreThoseOfTheOriginal_data()
{
    QTest::addColumn<QString>("select");
    for (const QString &select :
         {u"Select * from StockList"_s, u"Select * from StockList order by StockName"_s,
          u"Select * from StockList where StockName like '%TEA%'"_s,
          u"Select * from StockList where StockName like 'a%'"_s,
          u"Select * from StockList where StockName like '%\u00e9%'"_s, u"Select * from PurchaseCart"_s,
          u"Select * from InventoryCategory order by CategoryName"_s, u"Select * from SysUsage"_s,
          u"Select * from Users"_s})
        QTest::newRow(qPrintable(select)) << select;
}

/// In their order: before the copy, on the server, and in a file again.
void ServerCopyTest::listsOfTheCopyAreThoseOfTheOriginal()
{
    QFETCH(const QString, select);
    m_desk->fill();
    const TransferEnd back = copyServerToFile(m_desk->target(), m_desk->path(u"back.sqlite"_s), {});
    QCOMPARE(back.problem, QString());
    const auto listed = [&](const QString &store) {
        const auto opened = openStoreRecords(store, Access::Read);
        return opened ? (*opened)->records().read({select, {}}).value_or(QList<RecordRow>()) : QList<RecordRow>();
    };
    const QList<RecordRow> rows = listed(m_desk->path(u"full.sqlite"_s));
    QVERIFY(!rows.isEmpty());
    QVERIFY(listed(m_desk->target()) == rows);
    QVERIFY(listed(m_desk->path(u"back.sqlite"_s)) == rows);
}

/// One that is not what was written.
void ServerCopyTest::changedRowIsFound()
{
    makeFullStore(m_desk->path(u"full.sqlite"_s));
    m_desk->sql(u"create function harrowby.spoil() returns trigger language plpgsql as $$ begin if new.rowid_ = 7 then "
                "new.StockCost = new.StockCost + 1; end if; return new; end $$; create trigger spoil before insert on "
                "harrowby.StockList for each row execute function harrowby.spoil()"_s);
    const TransferEnd end = copyFileToServer(m_desk->path(u"full.sqlite"_s), m_desk->target(), {});
    QCOMPARE(end.outcome, How::Failed);
    QVERIFY2(end.problem.contains(u"StockList does not read back as it was written (23 rows instead of 23)"_s),
             qPrintable(end.problem));
    QCOMPARE(m_desk->everyRow(), QStringList());
}

HARROWBY_TEST(app_server_copy_test, ServerCopyTest)
#include "server_copy_test.moc"
