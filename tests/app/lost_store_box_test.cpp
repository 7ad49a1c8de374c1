// SPDX-License-Identifier: MIT
#include "app/backup/backup_names.h"
#include "app/backup/backup_page.h"
#include "app/backup/lost_store_box.h"
#include "app/records/sqlite_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_loss.h"
#include "app/shop/store_open.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <harrowby/window_marks.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

/// A window that asks before it closes, as the till does.
class AskingWindow : public QWidget
{
public:
    AskingWindow() { setProperty(SalesWindowProperty, true); }
    QDialog question;

protected:
    void closeEvent(QCloseEvent *event) override
    {
        event->ignore();
        if (!question.isVisible())
            question.exec();
    }
};

} // namespace

/// The box that is shown in front once the store file is lost.
class LostStoreBoxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void boxSaysWhatHappened_data();
    void boxSaysWhatHappened();
    void adviceFollowsTheLoss_data();
    void adviceFollowsTheLoss();
    void enterPressesNothing();
    void noLeadsBack();
    void questionThatStandsAlreadyIsAnsweredFirst();
    void tillThatAsksAlreadyIsNotClosed();
    void rescueCopyIsMade();
    void rescueCopyReplacesNothing();
    void rescueCopyStandsBesideTheOneOfAnotherTill();
    void closingWithoutTheCopyIsAskedFor();
    void allCanBeTouchedAndRead();
    void officeClosesFromTheFront();
    void lossInTheLastMomentIsTold();
    void rescueGoesWhereThereIsAFolder();
    void noBackupOfAFileThatIsGone();

private:
    [[nodiscard]] QString path(const QString &name = u"shop.sqlite"_s) const { return m_folder->filePath(name); }
    void lose(const QString &how);
    [[nodiscard]] LostStoreBox *box() const;
    [[nodiscard]] QString text(const QString &name) const { return box()->findChild<QLabel *>(name)->text(); }
    void press(const QString &name) const { box()->findChild<QPushButton *>(name)->click(); }

    std::unique_ptr<QTemporaryDir> m_folder;
    BusyWait m_wait;
    std::unique_ptr<StoreGuard> m_guard;
    std::unique_ptr<LostStoreAlarm> m_alarm;
    int m_closings = 0;
    bool m_asks = true;    ///< whether the till asks
    bool m_closes = false; ///< what the till's question is answered with
};

void LostStoreBoxTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    makeStore(path());
    SqliteDatabase database;
    QVERIFY(!into(database, openStore(path(), m_wait)));
    m_guard = std::make_unique<StoreGuard>(std::move(database), path(), m_wait);
    m_closings = 0;
    m_closes = false;
    m_asks = true;
    m_alarm = std::make_unique<LostStoreAlarm>(*m_guard, u"till"_s, [this] {
        ++m_closings;
        QDialog question;
        if (m_asks)
            question.show();
        return m_closes;
    });
    QVERIFY(!runSql(m_guard->database(), u"INSERT INTO SysUsage (SystemUsage) VALUES ('one')"_s));
}

void LostStoreBoxTest::cleanup()
{
    m_alarm.reset();
    m_guard.reset();
}

/// Moved to "moved.sqlite", or removed.
void LostStoreBoxTest::lose(const QString &how)
{
    QVERIFY(how == u"moved"_s ? QFile::rename(path(), path(u"moved.sqlite"_s)) : QFile::remove(path()));
    m_guard->tick();
    QVERIFY(box() != nullptr);
}

LostStoreBox *LostStoreBoxTest::box() const
{
    return qobject_cast<LostStoreBox *>(QApplication::activeModalWidget());
}

void LostStoreBoxTest::boxSaysWhatHappened_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("advice");
    QTest::addColumn<bool>("rescues");
    QTest::newRow("moved") << u"moved"_s << u"was moved or renamed"_s << u"moved.sqlite\""_s << false;
    QTest::newRow("removed") << u"removed"_s << u"was removed"_s << u"Make a rescue copy now."_s << true;
}

void LostStoreBoxTest::boxSaysWhatHappened()
{
    QFETCH(const QString, how);
    QVERIFY(box() == nullptr);
    lose(how);
    QVERIFY(box()->windowTitle().contains(u"Nothing Is Being Saved"_s));
    QVERIFY(text(u"lostStoreWhat"_s).contains(u'"' + path() + u'"'));
    QFETCH(const QString, what);
    QVERIFY2(text(u"lostStoreWhat"_s).contains(what), qPrintable(text(u"lostStoreWhat"_s)));
    QFETCH(const QString, advice);
    QVERIFY2(text(u"lostStoreAdvice"_s).contains(advice), qPrintable(text(u"lostStoreAdvice"_s)));
    QFETCH(const bool, rescues);
    QCOMPARE(box()->findChild<QPushButton *>(u"makeRescueCopy"_s)->isVisible(), rescues);
}

void LostStoreBoxTest::adviceFollowsTheLoss_data()
{
    using Kind = StoreLoss::Kind;
    QTest::addColumn<StoreLoss>("loss");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("what");
    const auto row = [](const char *name, const StoreLoss &loss, const QString &where, const QString &what) {
        QTest::newRow(name) << loss << where << what;
    };
    const auto shop = u"shop"_s;
    const auto stop = u"Stop here. Close all tills and the office of this store, bring back the last backup, and start "
                      "again."_s;
    row("overwritten", {Kind::Overwritten, shop, shop, {}, false}, u"Nothing more was written into the file."_s, stop);
    row("overwritten, with a log", {Kind::Overwritten, shop, shop, u"log"_s, false},
        u"Nothing more was written into the file. What was saved in the last moments is in its log, which was put "
        u"aside "
        "as \"log\"."_s,
        stop);
    const auto restart = u"Close the till and start it again; leave the files beside the store file alone."_s;
    row("log lost", {Kind::LogLost, shop, {}, {}, true}, u"All that was saved before is in the store file."_s, restart);
    row("log lost, not yet there", {Kind::LogLost, shop, {}, {}, false},
        u"What was saved last is still on its way into the store file."_s, restart);
    row("moved, not yet there", {Kind::Moved, shop, u"there"_s, {}, false},
        u"What was saved last is still on its way into \"there\"."_s,
        u"Stop here. Close the till, move the file back to its place, and start again."_s);
    row("replaced, with a log", {Kind::Replaced, shop, u"there"_s, u"log"_s, false},
        u"What was saved last is still on its way from \"log\" into \"there\"."_s,
        u"Stop here. Close the till, find out which of the two files is the right one, put that in its place, and "
        u"start "
        "again."_s);
    row("replaced, without a name", {Kind::Replaced, shop, {}, {}, true},
        u"All that was saved before is still in reach, but only as long as this window is open. Make a rescue copy now."_s,
        u"Then close all tills and the office of this store, find out whether the copy or the new file is the right "
        u"one, "
        "put that in its place, and start again."_s);
}

void LostStoreBoxTest::adviceFollowsTheLoss()
{
    QFETCH(const StoreLoss, loss);
    QFETCH(const QString, where);
    QFETCH(const QString, what);
    QCOMPARE(lossAdvice(loss, u"till"_s), where + u"\n\n"_s + what);
}

/// A code reader goes on sending codes, each with Enter at its end.
void LostStoreBoxTest::enterPressesNothing()
{
    lose(u"moved"_s);
    QTest::keyClicks(box(), u"TEA-0001 c"_s);
    QTest::keyClick(box(), Qt::Key_Return);
    QTest::keyClick(box(), Qt::Key_Enter);
    QCOMPARE(m_closings, 0);
    QVERIFY(box() != nullptr);
}

void LostStoreBoxTest::noLeadsBack()
{
    lose(u"moved"_s);
    press(u"closeLostStore"_s);
    QCOMPARE(m_closings, 1);
    QVERIFY(box() != nullptr);
    QTest::keyClick(box(), Qt::Key_Escape);
    QCOMPARE(m_closings, 2);
    QVERIFY(box() != nullptr);
    m_closes = true;
    press(u"closeLostStore"_s);
    QCOMPARE(m_closings, 3);
    QVERIFY(box() == nullptr);
}

/// The till's closing question is open when the file is lost; the till does not ask again.
void LostStoreBoxTest::questionThatStandsAlreadyIsAnsweredFirst()
{
    QDialog question;
    question.setModal(true);
    question.show();
    lose(u"moved"_s);
    m_asks = false;
    press(u"closeLostStore"_s);
    QCOMPARE(m_closings, 1);
    QCOMPARE(QApplication::activeModalWidget(), &question);
    m_guard->tick();
    QCOMPARE(QApplication::activeModalWidget(), &question);
    question.reject();
    QTRY_VERIFY(box() != nullptr);
}

void LostStoreBoxTest::tillThatAsksAlreadyIsNotClosed()
{
    AskingWindow till;
    till.show();
    bool closed = true;
    QTimer::singleShot(0, &till, [&] {
        closed = closeTill();
        till.question.reject();
    });
    till.close();
    QVERIFY(!closed);
    QVERIFY(till.isVisible());
}

void LostStoreBoxTest::rescueCopyIsMade()
{
    lose(u"removed"_s);
    const QString copy = box()->findChild<QLineEdit *>(u"rescuePlace"_s)->text();
    QVERIFY2(copy.startsWith(path(u"shop-rescue-"_s)), qPrintable(copy));
    press(u"makeRescueCopy"_s);
    QTRY_VERIFY_WITH_TIMEOUT(text(u"rescueOutcome"_s).contains(u"made and checked"_s), 30000);
    QCOMPARE(column(copy, u"SELECT SystemUsage FROM SysUsage"_s), QStringList{u"one"_s});
    m_closes = true;
    press(u"closeLostStore"_s);
    QCOMPARE(m_closings, 1);
    m_guard.reset();
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

void LostStoreBoxTest::rescueCopyReplacesNothing()
{
    lose(u"removed"_s);
    QFile other(path(u"other.db"_s));
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write("another") > 0);
    other.close();
    for (const QString &place : {path(u"other.db"_s), path(u"nowhere/copy.db"_s), path() + u"-wal"_s}) {
        box()->findChild<QLineEdit *>(u"rescuePlace"_s)->setText(place);
        press(u"makeRescueCopy"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!text(u"rescueOutcome"_s).isEmpty(), 30000);
        QVERIFY2(!text(u"rescueOutcome"_s).contains(u"made and checked"_s), qPrintable(place));
    }
    QCOMPARE(other.size(), 7);
}

void LostStoreBoxTest::rescueCopyStandsBesideTheOneOfAnotherTill()
{
    lose(u"removed"_s);
    const auto place = [this] { return box()->findChild<QLineEdit *>(u"rescuePlace"_s)->text(); };
    QFile other(place());
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write("another") > 0);
    other.close();
    press(u"makeRescueCopy"_s);
    QTRY_VERIFY_WITH_TIMEOUT(text(u"rescueOutcome"_s).contains(u"made and checked"_s), 30000);
    QVERIFY(text(u"rescueOutcome"_s).contains(place()));
    QVERIFY(place() != other.fileName());
    QCOMPARE(column(place(), u"SELECT SystemUsage FROM SysUsage"_s), QStringList{u"one"_s});
    QCOMPARE(other.size(), 7);
    press(u"makeRescueCopy"_s); // not a third one
    QTRY_VERIFY_WITH_TIMEOUT(text(u"rescueOutcome"_s).contains(u"It was left as it was"_s), 30000);
}

void LostStoreBoxTest::closingWithoutTheCopyIsAskedFor()
{
    lose(u"removed"_s);
    const auto answerWith = [](const QString &caption) {
        QTimer::singleShot(0, [caption] {
            const auto *question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(question != nullptr);
            QVERIFY2(question->text().contains(u"No rescue copy"_s), qPrintable(question->text()));
            for (QAbstractButton *button : question->buttons()) {
                if (button->text().remove(u'&') == caption)
                    return button->click();
            }
            QFAIL("no such button");
        });
    };
    answerWith(u"Cancel"_s);
    press(u"closeLostStore"_s);
    QCOMPARE(m_closings, 0);
    answerWith(u"Close It"_s);
    press(u"closeLostStore"_s);
    QCOMPARE(m_closings, 1);
}

void LostStoreBoxTest::allCanBeTouchedAndRead()
{
    lose(u"removed"_s);
    for (const auto *button : box()->findChildren<QPushButton *>()) {
        QVERIFY2(button->height() >= 44, qPrintable(button->text()));
        QVERIFY(button->focusPolicy() & Qt::TabFocus);
        QVERIFY(button->text().contains(u'&'));
        QVERIFY(!button->isDefault() && !button->autoDefault()); // Enter must press no button
    }
    QVERIFY(box()->findChild<QLineEdit *>(u"rescuePlace"_s)->height() >= 44);
    QVERIFY(!box()->findChild<QLineEdit *>(u"rescuePlace"_s)->accessibleName().isEmpty());
    QVERIFY2(box()->height() <= 560 && box()->width() <= 780,
             qPrintable(u"%1x%2"_s.arg(box()->width()).arg(box()->height())));
}

/// With a box of the office open, the box is shown over it.
void LostStoreBoxTest::officeClosesFromTheFront()
{
    m_alarm = std::make_unique<LostStoreAlarm>(*m_guard, u"office"_s, closeOffice);
    QDialog office;
    QTimer::singleShot(0, &office, [&] {
        QDialog user(&office);
        QTimer::singleShot(0, &user, [&] {
            lose(u"moved"_s);
            QCOMPARE(box()->parentWidget(), &office); // closed last
            press(u"closeLostStore"_s);
        });
        QCOMPARE(user.exec(), static_cast<int>(QDialog::Rejected));
    });
    QCOMPARE(office.exec(), static_cast<int>(QDialog::Rejected));
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

/// The till is closed before the next check.
void LostStoreBoxTest::lossInTheLastMomentIsTold()
{
    m_alarm->checkOnceMore(); // nothing is lost: no box
    QVERIFY(QFile::remove(path()));
    QTimer::singleShot(0, this, [this] {
        QVERIFY(box() != nullptr);
        press(u"makeRescueCopy"_s);
        QTRY_VERIFY_WITH_TIMEOUT(text(u"rescueOutcome"_s).contains(u"made and checked"_s), 30000);
        press(u"closeLostStore"_s);
    });
    m_alarm->checkOnceMore();
    QVERIFY(box() == nullptr);
    QCOMPARE(QDir(m_folder->path()).entryList({u"shop-rescue-*.db"_s}).size(), 1);
}

void LostStoreBoxTest::rescueGoesWhereThereIsAFolder()
{
    const QDateTime now(QDate(2026, 11, 21), QTime(9, 5, 7));
    QCOMPARE(usualRescuePlace(path(), now), path(u"shop-rescue-2026-11-21-090507.db"_s));
    QVERIFY(QFile(path(u"shop-rescue-2026-11-21-090507.db"_s)).open(QIODevice::WriteOnly));
    QCOMPARE(usualRescuePlace(path(), now), path(u"shop-rescue-2026-11-21-090507-2.db"_s));
    QVERIFY(QDir().mkpath(QDir::homePath()));
    const QString elsewhere = usualRescuePlace(path(u"gone/shop.sqlite"_s), now);
    QVERIFY(QFileInfo(elsewhere).absoluteDir().exists());
    QCOMPARE(QFileInfo(elsewhere).fileName(), u"shop-rescue-2026-11-21-090507.db"_s);
}

void LostStoreBoxTest::noBackupOfAFileThatIsGone()
{
    SqliteRecords records(m_guard->database());
    BackupPage page({records, officePlace, u"ANNA"_s}, path(),
                    {[](const QString &, const QString &, const QString &) { return QString(); },
                     [](const QString &, const QString &, const QString &) { return true; }});
    page.watchStore([this] { return m_guard->check() ? QString() : lossHeadline(m_guard->loss()); });
    const QString copy = path(u"backup.db"_s);
    page.findChild<QLineEdit *>(u"backupPlace"_s)->setText(copy);
    // Another store at the path must not be taken for this one.
    QVERIFY(QFile::rename(path(), path(u"moved.sqlite"_s)));
    makeStore(path(u"another.sqlite"_s));
    QVERIFY(QFile::rename(path(u"another.sqlite"_s), path()));
    page.findChild<QPushButton *>(u"startBackup"_s)->click();
    QVERIFY(!page.leaving());
    QVERIFY(page.findChild<QLabel *>(u"backupOutcome"_s)->text().contains(u"Another file was put in the place"_s));
    QVERIFY(!QFile::exists(copy));
}

HARROWBY_TEST(app_lost_store_box_test, LostStoreBoxTest)
#include "lost_store_box_test.moc"
