// SPDX-License-Identifier: MIT
#include "app/shop/failure_notice.h"
#include "app/shop/failure_text.h"
#include "app/shop/notice_place.h"
#include "app/shop/wait_sign.h"

#include "tests/program/test_program.h"

#include <harrowby/window_marks.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

namespace {

DbFailure writeFailure(const QString &statement, int code = SQLITE_FULL, const QString &reason = u"reason"_s)
{
    return {DbFailure::Kind::Write, statement, reason, code};
}

const QString lowerStock = u"Update Stocklist Set StockAvailable = StockAvailable - 1 where StockID = 'A'"_s;

/// The totals of a till in a bare window.
class BareTill : public QWidget
{
public:
    BareTill() : entry(new QLineEdit(this)), total(new QLabel(u"Total: 5.00"_s, this))
    {
        setProperty(SalesWindowProperty, true);
        total->setProperty(KeptInSightProperty, true);
        setGeometry(0, 0, 800, 600);
    }
    QLineEdit *entry;
    QLabel *total;
};

QRect onScreen(const QWidget &widget)
{
    return {widget.mapToGlobal(QPoint(0, 0)), widget.size()};
}

} // namespace

class FailureNoticeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void words_data();
    void words();
    void advice_data();
    void advice();
    void adviceOnAQuoteInAName();
    void longReasonIsCutShort();
    void firstFailureShowsTheWindow();
    void readsAreNotShown();
    void failuresAreCounted();
    void dismissingForgets();
    void noticesComeOnceForEachCause();
    void notAllIsAboutSaving();
    void filesThatFail_data();
    void filesThatFail();
    void logThatCannotBeWritten();
    void eachReasonIsShown();
    void takesNoFocus();
    void signOfAWaitIsPaintedAtOnce();
    void doesNotKeepTheProgramAlive();
    void textIsPlain();
    void keepsClearOfTheTotal();
    void movesAsideWhenATotalComes();
    void keepsClearOfABoxInFront();
    void place_data();
    void place();

private:
    static QString text(const FailureNotice &notice, const QString &name)
    {
        return notice.findChild<QLabel *>(name)->text();
    }
};

void FailureNoticeTest::words_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("work");
    const auto row = [](const char *name, const QString &statement, const QString &work) {
        QTest::newRow(name) << statement << work;
    };
    row("sale", lowerStock, u"The stock of an item was not changed."_s);
    row("purchase", u"INSERT PurchaseCart"_s, u"The purchase was not recorded."_s);
    row("purchase gone", u"Delete from PurchaseCart where PurchaseID = 'A'"_s, u"The purchase was not deleted."_s);
    row("item", u"INSERT StockList"_s, u"The new stock item was not saved."_s);
    row("item gone", u"Delete from StockList where Upper(StockID) = 'A'"_s, u"The stock item was not deleted."_s);
    row("category", u"Insert Into InventoryCategory (CategoryName) Values ('A')"_s, u"The category was not added."_s);
    row("category name", u"Update InventoryCategory SET CategoryName = 'A'"_s, u"The category was not renamed."_s);
    row("category gone", u"Delete from InventoryCategory where CategoryName = 'A'"_s,
        u"The category was not deleted."_s);
    row("settings", u"Update StoreSettings SET Email = 1"_s, u"The store settings were not saved."_s);
    row("activity", u"INSERT INTO SysUsage (SystemUsage) Values ('A')"_s, u"The activity was not recorded."_s);
    row("code", u"insert into HarrowbyCode (Code) values (?)"_s, u"The code of an item was not added."_s);
    row("payment", u"insert into HarrowbyPayment (PaymentID) values (?)"_s,
        u"The payment of a purchase was not recorded."_s);
    row("payment completed", u"UPDATE HarrowbyPayment"_s, u"The payment of a purchase was not recorded."_s);
    row("intent", u"delete from HarrowbyPayment where PaymentID = ?"_s,
        u"A payment that did not come about was not removed."_s);
    row("run", u"insert into HarrowbyRun (Run) values (?)"_s, u"It was not noted that this till is open, or closed."_s);
    row("drawer", u"insert into HarrowbyDrawerOpening (OpeningID) values (?)"_s,
        u"The opening of the cash drawer was not recorded, so the drawer stays shut."_s);
    row("code gone", u"delete from HarrowbyCode where Code = ?"_s, u"The code of an item was not deleted."_s);
    row("codes of a renamed item", u"update HarrowbyCode set StockID = ?"_s,
        u"The codes of an item were not changed."_s);
    row("shop's setting", u"insert into HarrowbySetting (Name, Value) values (?, ?)"_s,
        u"A setting of the shop was not saved."_s);
    row("shop's settings", u"UPDATE HarrowbySetting"_s, u"A setting of the shop was not saved."_s);
    row("quoted", u"UPDATE \"StockList\" SET x = 1"_s, u"The stock of an item was not changed."_s);
    row("another table", u"UPDATE Birds"_s, u"A change was not saved."_s);
    row("nothing", QString(), u"A change was not saved."_s);
}

void FailureNoticeTest::words()
{
    QFETCH(QString, statement);
    QTEST(failedWork(writeFailure(statement)), "work");
}

void FailureNoticeTest::advice_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("word");
    QTest::newRow("full") << SQLITE_FULL << u"Free some space"_s;
    QTest::newRow("busy") << SQLITE_BUSY << u"locked"_s;
    QTest::newRow("extended busy") << SQLITE_BUSY_SNAPSHOT << u"locked"_s;
    QTest::newRow("read-only") << SQLITE_READONLY_DIRECTORY << u"cannot be written"_s;
    QTest::newRow("moved") << SQLITE_READONLY_DBMOVED << u"Nothing is being saved any more"_s;
    QTest::newRow("damaged") << SQLITE_CORRUPT << u"backup"_s;
    QTest::newRow("disk") << SQLITE_IOERR_FSYNC << u"Check the disk"_s;
    QTest::newRow("lost table") << SQLITE_ERROR << u"missing"_s;
    QTest::newRow("rule") << SQLITE_CONSTRAINT_UNIQUE << u"rule"_s;
    QTest::newRow("lost column") << 0 << u"missing"_s;
}

void FailureNoticeTest::advice()
{
    QFETCH(int, code);
    QFETCH(QString, word);
    const QString found = failureAdvice(writeFailure(lowerStock, code));
    QVERIFY2(found.contains(word), qPrintable(found));
}

void FailureNoticeTest::adviceOnAQuoteInAName()
{
    const DbFailure refused = writeFailure(lowerStock, 0, u"a text value contains a single quote"_s);
    QVERIFY(failureAdvice(refused).contains(u"Change the name"_s));
    // Nobody is to sell again because a payment could not be written.
    QCOMPARE(failureAdvice(writeFailure(u"UPDATE HarrowbyPayment"_s, SQLITE_FULL)),
             u"The disk is full. Free some space, and go on: the till does this again by itself."_s);
}

void FailureNoticeTest::longReasonIsCutShort()
{
    const QString reason = failureReason(writeFailure(lowerStock, SQLITE_ERROR, QString(10000, u'x') + u"\nmore"_s));
    QVERIFY(reason.size() < 200);
    QVERIFY(reason.endsWith(u'\u2026'));
}

void FailureNoticeTest::firstFailureShowsTheWindow()
{
    FailureNotice notice;
    QVERIFY(!notice.isVisible());
    notice.add(writeFailure(lowerStock, SQLITE_FULL, u"database or disk is full"_s));
    QVERIFY(notice.isVisible());
    QVERIFY(text(notice, u"failureHeading"_s).contains(QDateTime::currentDateTime().toString(u"HH:"_s)));
    QCOMPARE(text(notice, u"failureWork"_s), u"The stock of an item was not changed."_s);
    QCOMPARE(text(notice, u"failureReason"_s), u"Reason: database or disk is full"_s);
    QVERIFY(text(notice, u"failureAdvice"_s).contains(u"Free some space"_s));
    const auto *button = notice.findChild<QPushButton *>(u"failureDismiss"_s);
    QVERIFY(button->height() >= 44);
    for (const auto *label : notice.findChildren<QLabel *>())
        QVERIFY(label->height() >= label->heightForWidth(label->width()));
}

void FailureNoticeTest::readsAreNotShown()
{
    FailureNotice notice;
    notice.add({DbFailure::Kind::Read, u"Select * from StockList"_s, u"no such table"_s, SQLITE_ERROR});
    QVERIFY(!notice.isVisible());
}

void FailureNoticeTest::failuresAreCounted()
{
    FailureNotice notice;
    for (int i = 0; i < 3; ++i)
        notice.add(writeFailure(lowerStock));
    notice.add(writeFailure(u"INSERT PurchaseCart"_s));
    QCOMPARE(text(notice, u"failureWork"_s),
             u"The stock of an item was not changed. (3 times)\nThe purchase was not recorded."_s);
}

void FailureNoticeTest::dismissingForgets()
{
    FailureNotice notice;
    notice.add(writeFailure(lowerStock));
    QTest::mouseClick(notice.findChild<QPushButton *>(u"failureDismiss"_s), Qt::LeftButton);
    QVERIFY(!notice.isVisible());
    notice.add(writeFailure(u"INSERT PurchaseCart"_s));
    QVERIFY(notice.isVisible());
    QCOMPARE(text(notice, u"failureWork"_s), u"The purchase was not recorded."_s);
}

void FailureNoticeTest::noticesComeOnceForEachCause()
{
    FailureNotice notice;
    const Notice log = {u"log"_s, u"The log cannot be written."_s, u"No space left on device"_s, u"Free some."_s};
    notice.tell(log);
    QVERIFY(notice.isVisible());
    QCOMPARE(text(notice, u"failureWork"_s), log.work);
    QCOMPARE(text(notice, u"failureReason"_s), u"Reason: No space left on device"_s);
    QCOMPARE(text(notice, u"failureAdvice"_s), log.advice);
    notice.tell(log);
    QCOMPARE(text(notice, u"failureWork"_s), log.work); // not "(2 times)"
    notice.dismiss();
    notice.tell(log);
    QVERIFY(!notice.isVisible());
    notice.tell({log.subject, log.work, u"Permission denied"_s, log.advice});
    QVERIFY(notice.isVisible()); // another cause
    notice.dismiss();
    notice.tellOver(u"another"_s);
    notice.tell(log);
    QVERIFY(!notice.isVisible());
    notice.tellOver(log.subject);
    notice.tell(log);
    QVERIFY(notice.isVisible());
}

void FailureNoticeTest::notAllIsAboutSaving()
{
    FailureNotice notice;
    Notice drawer{u"drawer"_s, u"The drawer was not opened."_s, u"no answer"_s, u"Use the key."_s, true, false};
    notice.tell(drawer);
    QVERIFY2(text(notice, u"failureHeading"_s).startsWith(u"\u26a0 Not done ("_s),
             qPrintable(text(notice, u"failureHeading"_s)));
    drawer.reason = u"refused"_s;
    notice.tell(drawer);
    QCOMPARE(text(notice, u"failureWork"_s), u"The drawer was not opened. (2 times)"_s);
    notice.add(writeFailure(lowerStock));
    QVERIFY(text(notice, u"failureHeading"_s).startsWith(u"\u26a0 Not saved ("_s));
}

void FailureNoticeTest::filesThatFail_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("work");
    QTest::addColumn<QString>("workAgain");
    QTest::addColumn<QString>("advice");
    const auto row = [](const char *name, FileFailure::Kind kind, const QString &work, const QString &again,
                        const QString &advice) {
        QTest::newRow(name) << static_cast<int>(kind) << work << again << advice;
    };
    const auto receipt = u"A receipt was neither printed nor kept."_s;
    row("receipt", FileFailure::Kind::Receipt, receipt, receipt + u" (2 times)"_s,
        u"Check the disk and the folder %1. Until then receipts are lost; the last one can be printed again with "
        "\"Purchase Cart\" while the cart is empty."_s);
    const auto unread = u"The saved settings cannot be read: the usual ones are used."_s;
    row("settings that cannot be read", FileFailure::Kind::SettingsRead, unread, unread,
        u"Put the file %1 right, or move it away and save the settings anew."_s);
    const auto unsaved = u"The settings of this computer were not saved (printer, receipt, daily report)."_s;
    row("settings that cannot be saved", FileFailure::Kind::SettingsWrite, unsaved, unsaved,
        u"Check the disk and the file %1, then save the settings again."_s);
}

void FailureNoticeTest::filesThatFail()
{
    QFETCH(int, kind);
    QFETCH(QString, advice);
    FailureNotice notice;
    const FileFailure failure = {static_cast<FileFailure::Kind>(kind), u"/deep/place"_s, u"No space left on device"_s};
    notice.add(failure);
    QVERIFY(notice.isVisible());
    QTEST(text(notice, u"failureWork"_s), "work");
    QCOMPARE(text(notice, u"failureReason"_s), u"Reason: No space left on device"_s);
    QCOMPARE(text(notice, u"failureAdvice"_s), advice.arg(wrappingPath(failure.path)));
    notice.add(failure);
    QTEST(text(notice, u"failureWork"_s), "workAgain");
    notice.dismiss();
    notice.add(failure);
    QVERIFY(!notice.isVisible());
    for (const auto other :
         {FileFailure::Kind::Receipt, FileFailure::Kind::SettingsRead, FileFailure::Kind::SettingsWrite}) {
        if (other != failure.kind)
            notice.add({other, failure.path, {}, true}); // success of another kind
    }
    notice.add(failure);
    QVERIFY(!notice.isVisible());
    notice.add({failure.kind, failure.path, u"Permission denied"_s}); // another cause
    QVERIFY(notice.isVisible());
    notice.dismiss();
    notice.add({failure.kind, failure.path, {}, true});
    QVERIFY(!notice.isVisible());
    notice.add(failure);
    QVERIFY(notice.isVisible());
    QTEST(text(notice, u"failureWork"_s), "work");
}

void FailureNoticeTest::logThatCannotBeWritten()
{
    FailureNotice notice;
    const auto path = u"/deep/place"_s;
    const auto work = u"The log file cannot be written; warnings go to the terminal."_s;
    notice.addLog(path, Unexpected(u"No space left on device"_s));
    QVERIFY(notice.isVisible());
    QCOMPARE(text(notice, u"failureWork"_s), work);
    QCOMPARE(text(notice, u"failureReason"_s), u"Reason: No space left on device"_s);
    QCOMPARE(text(notice, u"failureAdvice"_s), u"Check the disk and the file %1."_s.arg(wrappingPath(path)));
    notice.addLog(path, Unexpected(u"No space left on device"_s));
    QCOMPARE(text(notice, u"failureWork"_s), work); // not counted
    notice.dismiss();
    notice.addLog(path, Unexpected(u"No space left on device"_s));
    QVERIFY(!notice.isVisible());
    notice.addLog(path, {}); // it is over
    QVERIFY(!notice.isVisible());
    notice.addLog(path, Unexpected(u"No space left on device"_s));
    QVERIFY(notice.isVisible());
}

void FailureNoticeTest::eachReasonIsShown()
{
    FailureNotice notice;
    notice.add({FileFailure::Kind::Receipt, u"/place"_s, u"Permission denied"_s});
    notice.add(writeFailure(lowerStock, SQLITE_FULL, u"database or disk is full"_s));
    notice.add(writeFailure(u"INSERT PurchaseCart"_s, SQLITE_FULL, u"database or disk is full"_s));
    QCOMPARE(text(notice, u"failureReason"_s), u"Reason: Permission denied\nReason: database or disk is full"_s);
    QCOMPARE(text(notice, u"failureAdvice"_s).split(u'\n').size(), 2);
}

void FailureNoticeTest::signOfAWaitIsPaintedAtOnce()
{
    WaitSign sign(u"Waiting"_s, u"For a lock."_s);
    sign.show(); // without a window
    BareTill till;
    till.show();
    till.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&till));
    const auto shown = [&till] {
        const auto *widget = till.findChild<QWidget *>(u"waitSign"_s);
        return widget != nullptr && widget->isVisible();
    };
    QVERIFY(!shown());
    sign.show();
    QVERIFY(shown());
    const auto *widget = till.findChild<QWidget *>(u"waitSign"_s);
    QVERIFY(till.rect().contains(widget->geometry()));
    QCOMPARE(widget->accessibleName(), u"Waiting"_s);
    // The platform window has the painted pixels, although no event was handled.
    const QPoint place = widget->mapToGlobal(QPoint(6, 6));
    QCOMPARE(till.screen()->grabWindow(0, place.x(), place.y(), 1, 1).toImage().pixelColor(0, 0), QColor(0, 98, 86));
    QCOMPARE(QApplication::focusWidget(), till.entry);
    sign.show(); // called repeatedly during the wait
    QCoreApplication::processEvents();
    QVERIFY(!shown());

    // Over a box, and hidden by the box's first event, although the action goes on.
    QDialog box(&till);
    box.setModal(true);
    QTimer::singleShot(0, &box, [&] {
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        sign.show();
        QTimer::singleShot(0, &box, &QDialog::accept);
    });
    box.exec();
    QVERIFY(!shown());
    QVERIFY(box.findChild<QWidget *>(u"waitSign"_s) != nullptr);
}

void FailureNoticeTest::takesNoFocus()
{
    BareTill till;
    till.show();
    QApplication::setActiveWindow(&till);
    till.entry->setFocus();
    QVERIFY(till.entry->hasFocus());
    FailureNotice notice;
    notice.add(writeFailure(lowerStock));
    QVERIFY(notice.testAttribute(Qt::WA_ShowWithoutActivating));
    QVERIFY(notice.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    QTest::mouseClick(&notice, Qt::LeftButton);
    QVERIFY(till.entry->hasFocus());
    for (const auto *child : notice.findChildren<QWidget *>())
        QCOMPARE(child->focusPolicy(), Qt::NoFocus);
}

void FailureNoticeTest::doesNotKeepTheProgramAlive()
{
    FailureNotice notice;
    notice.add(writeFailure(lowerStock));
    QVERIFY(!notice.testAttribute(Qt::WA_QuitOnClose));
    BareTill till;
    till.show();
    QTimer::singleShot(0, &till, &QWidget::close);
    QTimer::singleShot(std::chrono::seconds(20), &till, [] { QApplication::exit(1); });
    QVERIFY(notice.isVisible());
    QCOMPARE(QApplication::exec(), 0);
}

void FailureNoticeTest::textIsPlain()
{
    FailureNotice notice;
    notice.add(writeFailure(lowerStock, SQLITE_ERROR, u"<b>M & M</b>"_s));
    for (const auto *label : notice.findChildren<QLabel *>())
        QCOMPARE(label->textFormat(), Qt::PlainText);
}

void FailureNoticeTest::keepsClearOfTheTotal()
{
    BareTill till;
    till.setGeometry(till.screen()->availableGeometry());
    till.total->setGeometry(0, till.height() - 60, 500, 60); // where the notice would stand otherwise
    till.show();
    FailureNotice notice;
    notice.add(writeFailure(lowerStock));
    QVERIFY(!onScreen(notice).intersects(onScreen(*till.total)));
    QVERIFY(onScreen(till).contains(onScreen(notice)));
}

void FailureNoticeTest::movesAsideWhenATotalComes()
{
    BareTill till;
    till.setGeometry(till.screen()->availableGeometry());
    till.total->hide();
    till.total->setGeometry(0, till.height() - 200, 500, 200);
    till.show();
    FailureNotice notice;
    notice.add(writeFailure(lowerStock));
    QVERIFY(onScreen(notice).intersects(onScreen(*till.total)));
    till.total->show();
    QTRY_VERIFY(!onScreen(notice).intersects(onScreen(*till.total)));
}

void FailureNoticeTest::keepsClearOfABoxInFront()
{
    FailureNotice notice;
    notice.add(writeFailure(lowerStock));
    const QRect before = onScreen(notice);
    QDialog box;
    box.setModal(true);
    box.setGeometry(before);
    box.show();
    QTRY_VERIFY(!onScreen(notice).intersects(box.frameGeometry()));
    // It stays there, for a press at "Dismiss" right after the box has closed.
    const QPoint seen = notice.pos();
    box.close();
    notice.add(writeFailure(lowerStock)); // looks for a place at once
    QCOMPARE(notice.pos(), seen);
    notice.dismiss();
    notice.add(writeFailure(lowerStock));
    QVERIFY(notice.pos() != seen);
}

void FailureNoticeTest::place_data()
{
    QTest::addColumn<QRect>("window");
    QTest::addColumn<QList<QRect>>("keepFree");
    QTest::addColumn<QPoint>("expected");
    const QRect whole(0, 0, 1024, 768);
    QTest::newRow("below the window") << QRect(0, 0, 1024, 500) << QList<QRect>() << QPoint(0, 507);
    QTest::newRow("left of the window") << QRect(500, 0, 524, 768) << QList<QRect>() << QPoint(92, 618);
    QTest::newRow("lower left corner") << whole << QList<QRect>() << QPoint(8, 609);
    QTest::newRow("above a status bar") << whole << QList<QRect>{{0, 740, 1024, 28}} << QPoint(8, 585);
    QTest::newRow("beside a total") << whole << QList<QRect>{{0, 700, 100, 68}} << QPoint(104, 609);
    QTest::newRow("no place at all") << whole << QList<QRect>{whole} << QPoint(8, 609);
}

void FailureNoticeTest::place()
{
    QFETCH(QRect, window);
    QFETCH(QList<QRect>, keepFree);
    QTEST(noticePlace(QSize(400, 150), window, QRect(0, 0, 1024, 768), keepFree), "expected");
}

HARROWBY_TEST(app_failure_notice_test, FailureNoticeTest)
#include "failure_notice_test.moc"
