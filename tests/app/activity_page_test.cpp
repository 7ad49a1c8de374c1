// SPDX-License-Identifier: MIT
#include "app/office/activity_page.h"
#include "app/records/sqlite_records.h"
#include "app/work/work_strip.h"
#include "tables/table_view.h"
#include "tests/app/office_desk.h"
#include "tests/program/test_program.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// The office's page "Activity".
class ActivityPageTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void whatHappenedIsListed();
    void choicesAreLookedForAtOnce();
    void chosenDaysAreShownAndCount();
    void olderEntriesComeWithMore();
    void detailSaysItWhole();
    void listIsSaved();
    void savingCanBeCalledOff();
    void savingGoesOnWhateverIsChosen();
    void longSearchCanBeCancelled();
    void failureIsTold();

private:
    void open()
    {
        showPage(u"Activity"_s);
        m_strip = m_window->findChild<ActivityPage *>()->findChild<WorkStrip *>();
        wait();
    }
    /// Until the work under way has ended.
    void wait() { QTRY_VERIFY_WITH_TIMEOUT(!part<QLabel>("activityOutcome")->text().isEmpty(), 60000); }
    void choose(const char *name, const QString &text)
    {
        auto *box = part<QComboBox>(name);
        QVERIFY2(box->findText(text) >= 0, qPrintable(text));
        box->setCurrentIndex(box->findText(text));
        part<QLabel>("activityOutcome")->clear();
        Q_EMIT box->activated(box->currentIndex());
        wait();
    }
    void press(const char *name)
    {
        part<QLabel>("activityOutcome")->clear();
        part<QPushButton>(name)->click();
        wait();
    }
    [[nodiscard]] QString said() const { return part<QLabel>("activityOutcome")->text(); }
    [[nodiscard]] QStringList whats() const
    {
        QStringList all;
        for (const tables::Row &row : part<tables::TableView>("activity")->table().rows)
            all << std::get<QString>(row.back());
        return all;
    }
    void log(const QString &text, const QDateTime &when)
    {
        runAll(m_path, {u"insert into SysUsage values ('%1', '%2', '%2')"_s.arg(
                           text, when.toString(u"yyyy-MM-dd HH:mm:ss"_s))});
    }

    WorkStrip *m_strip = nullptr;
};

void ActivityPageTest::whatHappenedIsListed()
{
    log(u"Setting Saved!"_s, QDateTime::currentDateTime().addDays(-1));
    log(u"ANNA successfully logged in!"_s, QDateTime::currentDateTime().addDays(-20));
    OfficeDesk::choose(u"BOB"_s);
    part<QPushButton>("role0")->click();
    open();
    QCOMPARE(whats(), (QStringList{u"BOB was made cashier. Given: Use the till."_s, u"Setting Saved!"_s}));
    QCOMPARE(said(), u"2 entries."_s);
    QVERIFY(!part<QPushButton>("moreActivity")->isEnabled());
    choose("activityDays", u"All days"_s);
    QCOMPARE(whats().size(), 3);
    choose("activityDays", u"Yesterday"_s);
    QCOMPARE(whats(), QStringList{u"Setting Saved!"_s});
    QVERIFY(part<QComboBox>("activityUser")->findText(u"ANNA"_s) > 0);
}

void ActivityPageTest::choicesAreLookedForAtOnce()
{
    const QDateTime now = QDateTime::currentDateTime();
    log(u"ANNA successfully logged in!"_s, now);
    log(u"Cost of Item A1  |  TEA changed to 2.00!"_s, now);
    open();
    choose("activityKind", u"Price changed by hand"_s);
    QCOMPARE(whats(), QStringList{u"Cost of Item A1  |  TEA changed to 2.00!"_s});
    choose("activityKind", u"All kinds"_s);
    choose("activityUser", u"ANNA"_s);
    QCOMPARE(whats(), QStringList{u"ANNA successfully logged in!"_s});
    choose("activityUser", u"User not known"_s);
    QCOMPARE(whats(), QStringList{u"Cost of Item A1  |  TEA changed to 2.00!"_s});
    choose("activityUser", u"All users"_s);
    part<QLineEdit>("activityText")->setText(u"tea"_s);
    QCOMPARE(whats().size(), 2); // what is typed waits for Enter
    press("findActivity");
    QCOMPARE(whats().size(), 1);
    part<QLineEdit>("activityText")->setText(u"nothing like it"_s);
    part<QLabel>("activityOutcome")->clear();
    QTest::keyClick(part<QLineEdit>("activityText"), Qt::Key_Return);
    wait();
    QCOMPARE(said(), u"Nothing was found."_s);
}

void ActivityPageTest::chosenDaysAreShownAndCount()
{
    log(u"old"_s, QDateTime(QDate(2020, 3, 5), QTime(12, 0)));
    open();
    QVERIFY(!part<QDateEdit>("activityFrom")->isVisible());
    choose("activityDays", u"From \u2026 to \u2026"_s);
    QVERIFY(part<QDateEdit>("activityFrom")->isVisible() && part<QDateEdit>("activityTo")->isVisible());
    part<QLabel>("activityOutcome")->clear();
    part<QDateEdit>("activityTo")->setDate(QDate(2020, 3, 5)); // the other one is later: either order will do
    wait();
    QCOMPARE(whats(), QStringList{u"old"_s});
    QTRY_COMPARE(part<QDateEdit>("activityFrom")->date(), QDate::currentDate());
}

void ActivityPageTest::olderEntriesComeWithMore()
{
    runAll(m_path,
           {u"with recursive n(i) as (select 1 union all select i + 1 from n where i < 1200) insert into SysUsage "
            "select 'row ' || i, '', datetime('2024-01-01', i || ' minutes') from n"_s});
    open();
    choose("activityDays", u"All days"_s);
    QCOMPARE(said(), u"500 entries, and there are older ones."_s);
    press("moreActivity");
    press("moreActivity");
    QCOMPARE(whats().size(), 1200);
    QCOMPARE(whats().constFirst(), u"row 1200"_s);
    QCOMPARE(said(), u"1,200 entries."_s);
    QVERIFY(!part<QPushButton>("moreActivity")->isEnabled());
}

void ActivityPageTest::detailSaysItWhole()
{
    const QDateTime now = QDateTime::currentDateTime();
    log(u"Setting Saved!"_s, now);
    open();
    auto *view = part<tables::TableView>("activity");
    view->setCurrentIndex(view->model()->index(0, 0));
    QCOMPARE(part<QLabel>("activityDetail")->text(),
             now.toString(u"yyyy-MM-dd HH:mm:ss"_s) + u", Settings, not known, till\nSetting Saved!"_s);
}

void ActivityPageTest::listIsSaved()
{
    log(u"=2+2"_s, QDateTime::currentDateTime());
    open();
    const QString target = m_folder->filePath(u"list.csv"_s);
    QString suggested;
    m_window->findChild<ActivityPage *>()->setFileChooser([&](QWidget *, const QString &suggestion) {
        suggested = suggestion;
        return target;
    });
    press("saveActivity");
    QVERIFY2(suggested.contains(u"/activity-"_s) && suggested.contains(u"-to-"_s), qPrintable(suggested));
    QCOMPARE(said(), u"Saved: 1 entry in %1."_s.arg(target));
    QFile file(target);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    // With the mark by which spreadsheets know the letters.
    QVERIFY2(text.startsWith("\xef\xbb\xbfTime,Kind,User,Place,What\r\n") && text.contains("'=2+2"), text.constData());
    QCOMPARE(read(u"select What from HarrowbyActivity where Kind = 'Exported'"_s),
             u"Activity, 1 row, to %1"_s.arg(target));
    file.close();
    runAll(m_path, kept::setting().making +
                       QStringList{u"insert into HarrowbySetting values ('ExportSeparator', ';')"_s}); // on "Catalogue"
    press("saveActivity");
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().startsWith("\xef\xbb\xbfTime;Kind;"));
}

void ActivityPageTest::savingCanBeCalledOff()
{
    open();
    m_window->findChild<ActivityPage *>()->setFileChooser([](QWidget *, const QString &) { return QString(); });
    part<QPushButton>("saveActivity")->click();
    QCOMPARE(read(u"select count(*) from sqlite_master where name = 'HarrowbyActivity'"_s), u"0"_s);
    m_window->findChild<ActivityPage *>()->setFileChooser([this](QWidget *, const QString &) { return m_path; });
    answerNextBox(QMessageBox::AcceptRole);
    part<QPushButton>("saveActivity")->click();
    QVERIFY(!m_boxText.isEmpty()); // the store itself
}

void ActivityPageTest::savingGoesOnWhateverIsChosen()
{
    log(u"Setting Saved!"_s, QDateTime::currentDateTime());
    open();
    const QString target = m_folder->filePath(u"list.csv"_s);
    m_window->findChild<ActivityPage *>()->setFileChooser([&](QWidget *, const QString &) { return target; });
    part<QPushButton>("saveActivity")->click();
    showPage(u"Users"_s);
    showPage(u"Activity"_s);
    auto *days = part<QComboBox>("activityDays");
    days->setCurrentIndex(days->findText(u"Yesterday"_s));
    Q_EMIT days->activated(days->currentIndex());
    QCOMPARE(m_strip->findChild<QLabel *>(u"workWords"_s)->text(), u"Please wait \u2026"_s); // and not being stopped
    QTRY_COMPARE(said(), u"Nothing was found."_s);                                           // the list follows
    QVERIFY(QFile::exists(target));
}

void ActivityPageTest::longSearchCanBeCancelled()
{
    runAll(m_path,
           {u"with recursive n(i) as (select 1 union all select i + 1 from n where i < 60000) insert into SysUsage "
            "select 'row ' || i, '', datetime('2024-01-01', i || ' minutes') from n"_s});
    open();
    m_strip->setDelay(0);
    part<QLineEdit>("activityText")->setText(u"nothing like it"_s);
    bool wasBusy = false;
    connect(m_strip, &WorkStrip::busyChanged, this, [&](bool busy) {
        wasBusy = wasBusy || busy;
        if (busy)
            m_strip->findChild<QPushButton *>(u"workCancel"_s)->click();
    });
    choose("activityDays", u"All days"_s);
    QVERIFY(wasBusy);
    QTRY_VERIFY(part<QComboBox>("activityDays")->isEnabled());
    if (said() != u"Nothing was found."_s) { // it was quicker than the press
        QCOMPARE(said(), u"0 entries so far. \"More\" goes on looking."_s);
        disconnect(m_strip, &WorkStrip::busyChanged, this, nullptr);
        press("moreActivity");
        QCOMPARE(said(), u"Nothing was found."_s);
    }
}

void ActivityPageTest::failureIsTold()
{
    open();
    runAll(m_path, {u"drop table SysUsage"_s});
    press("findActivity");
    QCOMPARE(said(), u"\u26a0 What happened could not be read: no such table: SysUsage."_s);
}

HARROWBY_TEST(app_activity_page_test, ActivityPageTest)
#include "activity_page_test.moc"
