// SPDX-License-Identifier: MIT
#include "app/activity/activity_search.h"
#include "app/backup/backup.h"
#include "app/backup/restore.h"
#include "app/catalogue/import_columns.h"
#include "app/exchange/import_work.h"
#include "app/export/export.h"
#include "app/labels/label_picker.h"
#include "app/records/deeds.h"
#include "app/records/server_engine.h"
#include "app/work/work_job.h"
#include "tests/app/server_desk.h"
#include "tests/program/test_program.h"

#include <QElapsedTimer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <limits>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace harrowby::test;

namespace {

/// What somebody who has pressed "Cancel" waits for, on a busy machine.
constexpr int soon = 2000;
/// From then on the server has said nothing for so long that the work sits in a wait.
constexpr int silence = 300;

/// What it has come to, in a word.
using Work = std::function<QString(const WorkWatch &)>;

QString wordOf(bool wasStopped)
{
    return wasStopped ? u"stopped"_s : u"not stopped"_s;
}

} // namespace

/// Work on a thread ends as soon as it is told to, also while the server is silent.
class ServerCancelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { m_desk->cluster.cont(); }

    void silentServerHoldsNobody_data();
    void silentServerHoldsNobody();
    void commitThatIsUnderWayEnds();
    void labelPickerClosesAtOnce();

private:
    [[nodiscard]] Work preview() const;
    [[nodiscard]] Work search() const;
    [[nodiscard]] Work restore() const;
    [[nodiscard]] Work copy() const;
    [[nodiscard]] Work list() const;

    std::unique_ptr<ServerDesk> m_desk;
    QString m_backup;
};

void ServerCancelTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    const auto engine = serverEngine();
    QVERIFY2(engine, engine ? "" : qPrintable(engine.error()));
    m_desk = std::make_unique<ServerDesk>();
}

void ServerCancelTest::init()
{
    m_desk->begin();
    m_desk->fill();
    m_backup = m_desk->path(u"full.sqlite"_s);
}

Work ServerCancelTest::preview() const
{
    ImportDesk desk;
    desk.user = desk.who = u"ANNA"_s;
    desk.place = officePlace;
    desk.store = m_desk->target();
    ImportFile file{m_desk->path(u"list.csv"_s), "StockID,StockName,StockCategory,StockCost\n", u"0"_s};
    for (int i = 0; i < 5000; ++i)
        file.bytes += "NEW-" + QByteArray::number(i) + ",NEW " + QByteArray::number(i) + ",NEW,1\n";
    ImportChoices choices;
    choices.makeCategories = true;
    choices.columns = matchColumns(choices.kind, headingsOf(file.bytes, choices.form));
    return [desk, file, choices](const WorkWatch &watch) {
        const auto staged = withImport<StagedImport>(desk, watch, [&](CatalogueImport &import, const WorkWatch &heard) {
            return import.stage(file, choices, heard);
        });
        return wordOf(!staged && staged.error().kind == ImportEnd::Kind::Cancelled);
    };
}

Work ServerCancelTest::search() const
{
    return [store = m_desk->target()](const WorkWatch &watch) {
        ActivitySearch search({});
        bool hasFailed = false;
        const auto opened = withOwnRecords(store, watch, [&](Records &records, const WorkWatch &heard) {
            (void)heard({u"Looking back \u2026"_s});
            hasFailed = !search.next(records, std::numeric_limits<int>::max(), heard);
        });
        return wordOf(opened && !hasFailed && !search.isAtEnd());
    };
}

Work ServerCancelTest::restore() const
{
    const RestoreOrder order = {m_backup, m_desk->target(), u"ANNA"_s, officePlace, m_desk->folder()};
    return [order](const WorkWatch &watch) {
        return wordOf(restoreStore(order, watch).outcome == RestoreResult::Outcome::Stopped);
    };
}

Work ServerCancelTest::copy() const
{
    return [store = m_desk->target(), file = m_desk->path(u"copy.db"_s)](const WorkWatch &watch) {
        const auto tell = [&](const BackupProgress &progress) { return watch({u"Copying"_s, progress.percent}); };
        return wordOf(backUpStore(store, file, false, tell).outcome == BackupResult::Outcome::Stopped);
    };
}

Work ServerCancelTest::list() const
{
    return [store = m_desk->target(), file = m_desk->path(u"list.csv"_s)](const WorkWatch &watch) {
        const ExportEnd end = exportList(store, file, {ExportKind::Items, {}, {}, {}}, watch);
        return wordOf(end.outcome == ExportEnd::Outcome::Stopped);
    };
}

/// Silent from the start, or from the first step on that the work has told with these words.
void ServerCancelTest::silentServerHoldsNobody_data()
{
    using Maker = Work (ServerCancelTest::*)() const;
    QTest::addColumn<Maker>("maker");
    QTest::addColumn<QString>("from");
    const auto row = [](const char *name, Maker maker, const QString &from) { QTest::newRow(name) << maker << from; };
    row("preview, opening", &ServerCancelTest::preview, {});
    row("preview", &ServerCancelTest::preview, u"The rows are being compared with the store \u2026"_s);
    row("search, opening", &ServerCancelTest::search, {});
    row("search", &ServerCancelTest::search, u"Looking back \u2026"_s);
    row("restore, opening", &ServerCancelTest::restore, u"Making sure that nobody else has the store open \u2026"_s);
    row("restore, copying", &ServerCancelTest::restore, u"The rows are being copied \u2026"_s);
    row("backup, opening", &ServerCancelTest::copy, {});
    row("backup", &ServerCancelTest::copy, u"Copying"_s);
    row("list, opening", &ServerCancelTest::list, {});
    row("list", &ServerCancelTest::list, u"The list is being read \u2026"_s);
}

void ServerCancelTest::silentServerHoldsNobody()
{
    using Maker = Work (ServerCancelTest::*)() const;
    QFETCH(const Maker, maker);
    QFETCH(const QString, from);
    const Work work = (this->*maker)();
    std::atomic<bool> isSilent = false;
    const auto fallSilent = [&] {
        m_desk->cluster.stop();
        isSilent = true;
    };
    if (from.isEmpty())
        fallSilent();
    QString ended;
    WorkJob job;
    job.start<QString>(
        [&](const WorkWatch &watch) {
            return work([&](const WorkStep &step) {
                if (!isSilent && step.words == from)
                    fallSilent();
                return watch(step);
            });
        },
        [&](const Result<QString, QString> &outcome) { ended = outcome ? *outcome : outcome.error(); });
    QTRY_VERIFY_WITH_TIMEOUT(isSilent, 30000);
    QTest::qWait(silence);
    QVERIFY2(job.isRunning(), qPrintable(ended));
    job.cancel();
    QTRY_VERIFY_WITH_TIMEOUT(!job.isRunning(), soon);
    QCOMPARE(ended, u"stopped"_s);
}

/// It is not given up halfway, as nobody would know then whether it was done.
void ServerCancelTest::commitThatIsUnderWayEnds()
{
    m_desk->sql(u"create function harrowby.dawdle() returns trigger language plpgsql as $$ begin perform "
                "pg_sleep(1); return null; end $$; create constraint trigger dawdle after insert on "
                "harrowby.HarrowbySetting deferrable initially deferred for each row execute function "
                "harrowby.dawdle()"_s);
    bool goesOn = true;
    const auto own = WatchedStore::open(m_desk->target(), Access::Write, [&](const WorkStep &) { return goesOn; });
    QVERIFY(own);
    Records &records = (*own)->records();
    const auto kept = records.together(kept::setting(), [&] {
        goesOn = false;
        return records.write(kept::setting(), {u"insert into HarrowbySetting values ('late', 'x')"_s, {}}).has_value();
    });
    QVERIFY2(kept, kept ? "" : qPrintable(kept.error().reason));
    QCOMPARE(
        m_desk->cluster.sql(u"select count(*) from harrowby.HarrowbySetting where Name = 'late'"_s, m_desk->database()),
        QStringList(u"1"_s));
}

void ServerCancelTest::labelPickerClosesAtOnce()
{
    const auto records = openStoreRecords(m_desk->target(), Access::Read);
    QVERIFY(records);
    LabelList list;
    auto picker = std::make_unique<LabelPicker>((*records)->records(), m_desk->target(), list);
    picker->show();
    m_desk->cluster.stop();
    picker->findChild<QPushButton *>(u"addAllLabels"_s)->click();
    QTest::qWait(silence);
    QElapsedTimer held;
    held.start();
    picker->reject();
    picker.reset();
    QVERIFY2(held.elapsed() < soon, qPrintable(QString::number(held.elapsed())));
}

HARROWBY_TEST(app_server_cancel_test, ServerCancelTest)
#include "server_cancel_test.moc"
