// SPDX-License-Identifier: MIT
// The program's own windows on every kind of screen: nothing is cut off or out of reach.
#include "app/office/office_login_dialog.h"
#include "app/office/office_window.h"
#include "app/office/user_dialog.h"
#include "app/reorder/reorder_list.h"
#include "app/shop/failure_notice.h"
#include "app/shop/first_user_dialog.h"
#include "platform/boxes.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <harrowby/sqlite_connection.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

constexpr int touch = 44;
constexpr QSize smallScreen(800, 576);
const OfficeUser administrator = {u"ADMINISTRATOR"_s, true, true};

const QScrollArea *scrollerOf(const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent != nullptr; parent = parent->parentWidget()) {
        if (const auto *area = qobject_cast<const QScrollArea *>(parent))
            return area;
    }
    return nullptr;
}

bool isControl(const QWidget &widget)
{
    const bool part = widget.parentWidget() != nullptr && widget.parentWidget()->inherits("QComboBox");
    return !part &&
           (widget.inherits("QAbstractButton") || widget.inherits("QLineEdit") || widget.inherits("QComboBox"));
}

/// Names what is shown outside the window and outside a vertically scrolled area; empty when nothing is.
QString cutOff(const QWidget &window)
{
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible() || (!isControl(*widget) && !widget->inherits("QLabel")))
            continue;
        const QScrollArea *scroller = scrollerOf(*widget);
        const QWidget &around = scroller != nullptr ? *scroller->widget() : window;
        const QRect place(widget->mapTo(&around, QPoint()), widget->size());
        const QString name = widget->objectName() + u' ' + widget->accessibleName();
        if (!around.rect().contains(place))
            return u"%1 is outside"_s.arg(name);
        if (scroller != nullptr && around.width() > scroller->viewport()->width())
            return u"%1 is scrolled sideways"_s.arg(name);
        if (isControl(*widget) && (widget->height() < touch || widget->width() < touch))
            return u"%1 is too small to touch"_s.arg(name);
        const auto *label = qobject_cast<const QLabel *>(widget);
        if (label != nullptr && label->wordWrap() && label->height() < label->heightForWidth(label->width()))
            return u"%1 is cut off"_s.arg(label->text());
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        if (button != nullptr && button->width() < button->minimumSizeHint().width() &&
            button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width() > button->width() - 12)
            return u"%1 is cut off"_s.arg(button->text());
    }
    return {};
}

OfficeSettings noSettings()
{
    return {[](const QString &, const QString &, const QString &value) { return value; },
            [](const QString &, const QString &, const QString &) { return true; }};
}

} // namespace

class ScreenSizesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void officeFits_data();
    void officeFits();
    void rightsAreReadWhole();
    void dialogsFit();
    void reorderListFits_data() { officeFits_data(); }
    void reorderListFits();
    void longQuestionKeepsItsButtons_data();
    void longQuestionKeepsItsButtons();
    void noticeFits();

private:
    void show(QWidget &window, const QSize &size);

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    SqliteDatabase m_database;
};

void ScreenSizesTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path =
        m_folder->filePath(u"a-shop-with-a-long-name-that-nothing-can-be-broken-at-%1.sqlite"_s.arg(QString(40, u'x')));
    makeStore(m_path);
    QVERIFY(!into(m_database, openDatabase(m_path, OpenMode::Write)));
}

void ScreenSizesTest::cleanup()
{
    m_database.reset();
    m_folder.reset();
}

void ScreenSizesTest::show(QWidget &window, const QSize &size)
{
    window.resize(size);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.resize(size);
    QCoreApplication::processEvents();
    QVERIFY2(
        window.minimumSizeHint().width() <= size.width() && window.minimumSizeHint().height() <= size.height(),
        qPrintable(u"at least %1x%2"_s.arg(window.minimumSizeHint().width()).arg(window.minimumSizeHint().height())));
}

void ScreenSizesTest::officeFits_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size :
         {smallScreen, QSize(960, 576), QSize(1024, 576), QSize(768, 1342), QSize(1366, 744), QSize(1920, 1056)})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

void ScreenSizesTest::officeFits()
{
    QFETCH(QSize, size);
    OfficeWindow office(officeStore(m_database.get(), m_path), noSettings(), administrator);
    office.buildPages();
    show(office, size);
    for (const QString &page : office.pageTitles()) {
        office.showPage(page);
        QCoreApplication::processEvents();
        QCOMPARE(office.size(), size);
        QCOMPARE(cutOff(office), QString());
    }
}

void ScreenSizesTest::rightsAreReadWhole()
{
    OfficeWindow office(officeStore(m_database.get(), m_path), noSettings(), administrator);
    show(office, smallScreen);
    const auto boxes = office.findChildren<QCheckBox *>();
    int several = 0;
    for (const QCheckBox *box : boxes) {
        if (!box->isVisible())
            continue;
        QStyleOptionButton option;
        option.initFrom(box);
        const int room = box->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, box).width();
        QVERIFY2(box->fontMetrics().size(0, box->text()).width() <= room, qPrintable(box->text()));
        several += box->text().contains(u'\n') ? 1 : 0;
        QVERIFY(!box->accessibleName().contains(u'\n'));
    }
    QVERIFY(several > 0);
    office.resize(1920, 1056);
    QCoreApplication::processEvents();
    for (const QCheckBox *box : boxes)
        QVERIFY(!box->text().contains(u'\n'));
}

void ScreenSizesTest::dialogsFit()
{
    ReceiptProposal proposal;
    proposal.title = u"My Shop"_s;
    proposal.currency = u"N"_s;
    FirstUserDialog first(m_path, proposal);
    UserDialog user({}, [](const NewUser &) { return UsersTable::Problem(); });
    OfficeLoginDialog door([](const QString &, const QString &) { return Result<OfficeUser, QString>(OfficeUser()); });
    for (QDialog *dialog : std::initializer_list<QDialog *>{&first, &user, &door}) {
        dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        QCoreApplication::processEvents();
        QVERIFY2(dialog->width() <= 768 && dialog->height() <= smallScreen.height(),
                 qPrintable(u"%1: %2x%3"_s.arg(dialog->windowTitle()).arg(dialog->width()).arg(dialog->height())));
        QCOMPARE(cutOff(*dialog), QString());
    }
}

void ScreenSizesTest::reorderListFits()
{
    QFETCH(QSize, size);
    ReorderListDialog list(std::make_shared<SqliteConnection>(m_database.get()));
    show(list, size);
    QCOMPARE(list.size(), size);
    QCOMPARE(cutOff(list), QString());
}

void ScreenSizesTest::longQuestionKeepsItsButtons_data()
{
    QTest::addColumn<QString>("text");
    QString cart;
    for (int line = 1; line <= 200; ++line)
        cart += u"%1. 2 x BEV-%1  |  ARABICA COFFEE BEANS 1KG = 12,345.00\r\n"_s.arg(line);
    QTest::newRow("cart of 200 lines") << cart + u"\r\nPurchased Cart?"_s;
    QTest::newRow("one long word") << QString(10'000, u'W');
    QTest::newRow("many lines") << u"A\r\n"_s.repeated(500);
}

void ScreenSizesTest::longQuestionKeepsItsButtons()
{
    QFETCH(QString, text);
    QtBoxes boxes;
    int seen = 0;
    boxes.setObserver([&](QDialog &box) {
        QTimer::singleShot(0, &box, [&] {
            QVERIFY2(box.width() <= 768 && box.height() <= smallScreen.height(),
                     qPrintable(u"%1x%2"_s.arg(box.width()).arg(box.height())));
            for (const auto *button : box.findChildren<QAbstractButton *>()) {
                if (!button->isVisible())
                    continue;
                ++seen;
                QVERIFY(box.rect().contains(QRect(button->mapTo(&box, QPoint()), button->size())));
                QVERIFY(button->height() >= touch);
            }
            const auto *view = box.findChild<QPlainTextEdit *>();
            QVERIFY(view != nullptr && view->verticalScrollBar()->maximum() > 0);
            box.reject();
        });
    });
    QCOMPARE(boxes.message(nullptr, text, box::Ask, {}), Answer::No);
    QCOMPARE(seen, 2);
}

void ScreenSizesTest::noticeFits()
{
    FailureNotice notice;
    for (const QString &work : {u"UPDATE StockList SET StockAvailable = 1"_s, u"INSERT INTO PurchaseCart VALUES (1)"_s,
                                u"INSERT INTO SysUsage VALUES (1)"_s, u"DELETE FROM StockList"_s}) {
        DbFailure failure;
        failure.kind = DbFailure::Kind::Write;
        failure.statement = work;
        failure.reason = u"database or disk is full"_s;
        notice.add(failure);
    }
    QVERIFY(notice.isVisible());
    QCoreApplication::processEvents();
    QVERIFY(notice.width() <= smallScreen.width() && notice.height() <= smallScreen.height() / 2);
    QCOMPARE(cutOff(notice), QString());
    notice.dismiss();
}

HARROWBY_TEST(app_screen_sizes_test, ScreenSizesTest)
#include "screen_sizes_test.moc"
