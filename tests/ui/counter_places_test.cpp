// SPDX-License-Identifier: MIT
#include "app/shop/notice_place.h"
#include "tests/program/test_program.h"
#include "tests/ui/counter_guest.h"
#include "theme/measures.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

harrowby::Counter &guestCounter()
{
    return harrowby::Counter::instance();
}

/// Where every control of the window stands that there is without a host.
QMap<QString, QRect> placesOf(const QWidget &window)
{
    QMap<QString, QRect> places;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->objectName().isEmpty() && !widget->objectName().startsWith(u"qt_"_s) && widget->isVisible())
            places[widget->objectName()] = {widget->mapTo(&window, QPoint()), widget->size()};
    }
    return places;
}

/// Those that stand elsewhere, have come or have gone.
QStringList moved(const QMap<QString, QRect> &before, const QMap<QString, QRect> &after)
{
    QStringList names;
    for (auto it = before.begin(); it != before.end(); ++it) {
        if (after.value(it.key()) != it.value())
            names << it.key();
    }
    for (const QString &name : after.keys()) {
        if (!before.contains(name))
            names << name;
    }
    return names;
}

/// A scroll bar that comes lays its panel out once more.
void settle()
{
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

QPushButton *addButton(const QString &caption)
{
    auto *button = new QPushButton(caption);
    button->setObjectName(caption);
    return guestCounter().addButton(button) ? button : nullptr;
}

bool isInside(const QWidget &inner, const QWidget &outer)
{
    const QRect place(inner.mapTo(&outer, QPoint()), inner.size());
    return outer.rect().contains(place);
}

QLabel *addBanner(const QString &text = {})
{
    auto *banner = new QLabel(text);
    banner->setObjectName(u"banner"_s);
    return guestCounter().setBanner(banner) ? banner : nullptr;
}

} // namespace

/// The row for a host's buttons, and the banner above the total.
class CounterPlacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noRoomUntilUsed();
    void roomOfTheButtons_data();
    void roomOfTheButtons();
    void titleGivesWay();
    void moreButtonsThanFit();
    void buttonIsPressedByEnter();
    void tabOrder();
    void banner_data();
    void banner();
    void bannerIsReplaced();
    void bannerFollowsTheDensity();
    void keptInSight();
    void newWindowStartsWithout();
};

void CounterPlacesTest::noRoomUntilUsed()
{
    test::Counter till;
    openForGuests(till);
    QVERIFY(till.window().findChild<QWidget *>(u"HostButtons"_s) == nullptr);
    QVERIFY(till.window().findChild<QWidget *>(u"HostBanner"_s) == nullptr);
    QVERIFY(guestCounter().setBanner(nullptr)); // from here on there is the place
    QVERIFY(till.window().findChild<QWidget *>(u"HostBanner"_s) != nullptr);
}

void CounterPlacesTest::roomOfTheButtons_data()
{
    QTest::addColumn<QSize>("size");

    for (const QSize &size : {QSize(800, 600), QSize(760, 560), QSize(1024, 768), QSize(1920, 1080), QSize(768, 1366)})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

void CounterPlacesTest::roomOfTheButtons()
{
    QFETCH(const QSize, size);
    test::Counter till;
    openForGuests(till);
    till.window().resize(size);
    settle();
    QCOMPARE(till.window().size(), size);
    const QMap<QString, QRect> before = placesOf(till.window());
    for (const QString &caption : {u"Cash …"_s, u"Hold"_s, u"Recall"_s})
        QVERIFY(addButton(caption));
    settle();
    QCOMPARE(till.window().size(), size);
    QMap<QString, QRect> after = placesOf(till.window());
    for (const QString &caption : {u"Cash …"_s, u"Hold"_s, u"Recall"_s}) {
        const QWidget *button = till.window().findChild<QWidget *>(caption);
        QVERIFY(button->height() >= touchHeight && button->width() >= touchHeight);
        QVERIFY2(isInside(*button, till.window()), qPrintable(caption));
        QVERIFY(isInside(*button, *button->parentWidget()->parentWidget()));
        after.remove(caption);
    }
    after.remove(u"HostButtons"_s);
    QCOMPARE(moved(before, after).join(u" "_s), QString());
}

void CounterPlacesTest::titleGivesWay()
{
    test::Counter till;
    openForGuests(till);
    const auto title = [&till]() -> QWidget * {
        for (QLabel *label :
             till.window().centralWidget()->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (label->text() == u"Harrowby Inventory"_s)
                return label;
        }
        return nullptr;
    };
    till.window().resize(1600, 900);
    addButton(u"Cash …"_s);
    addButton(u"Open drawer"_s);
    addButton(u"Recall a cart"_s);
    settle();
    QVERIFY(title()->isVisible());
    till.window().resize(800, 600);
    settle();
    QVERIFY(!title()->isVisible());
    till.window().resize(1600, 900);
    settle();
    QVERIFY(title()->isVisible());
}

void CounterPlacesTest::moreButtonsThanFit()
{
    test::Counter till;
    openForGuests(till);
    till.window().resize(800, 600);
    QPushButton *first = addButton(u"The first of many"_s);
    QPushButton *last = nullptr;
    for (int i = 0; i < 12; ++i)
        last = addButton(u"Another button %1"_s.arg(i));
    settle();
    QCOMPARE(till.window().size(), QSize(800, 600));
    const QWidget &row = *till.find("HostButtons");
    QVERIFY(isInside(row, till.window()));
    for (QPushButton *button : {last, first}) {
        button->setFocus();
        settle();
        QVERIFY2(isInside(*button, row), qPrintable(button->text()));
    }
}

void CounterPlacesTest::buttonIsPressedByEnter()
{
    test::Counter till;
    openForGuests(till);
    int pressed = 0;
    QPushButton *button = addButton(u"Hold"_s);
    connect(button, &QPushButton::clicked, this, [&pressed] { ++pressed; });
    QTest::keyClick(button, Qt::Key_Return);
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(pressed, 2);
    auto *owned = new QPushButton(u"Later"_s);
    guestCounter().addButton(owned);
    QVERIFY(till.window().isAncestorOf(owned));
}

void CounterPlacesTest::tabOrder()
{
    test::Counter till;
    openForGuests(till);
    addButton(u"Cash …"_s);
    addButton(u"Hold"_s);
    addBanner(u"Change 1.00"_s);
    till.find("TabStrip1")->setFocus();
    QStringList order;
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(till.window().focusWidget(), Qt::Key_Tab);
        order << till.window().focusWidget()->objectName();
    }
    QCOMPARE(order, (QStringList{u"Cash …"_s, u"Hold"_s, u"Command8"_s, u"Combo1"_s}));
    QTest::keyClick(till.window().focusWidget(), Qt::Key_Backtab);
    QTest::keyClick(till.window().focusWidget(), Qt::Key_Backtab);
    QCOMPARE(till.window().focusWidget()->objectName(), u"Hold"_s);
}

void CounterPlacesTest::banner_data()
{
    roomOfTheButtons_data();
}

/// Texts come and go in it, and nothing moves.
void CounterPlacesTest::banner()
{
    QFETCH(const QSize, size);
    test::Counter till;
    openForGuests(till);
    till.window().resize(size);
    QLabel *banner = addBanner();
    settle();
    const QMap<QString, QRect> before = placesOf(till.window());
    for (const QString &text : {u"Change 12.50"_s, QString(300, u'W'), u"one\ntwo\nthree\nfour\nfive"_s, QString()}) {
        banner->setText(text);
        banner->setVisible(!text.isEmpty());
        settle();
        QMap<QString, QRect> now = placesOf(till.window());
        now[u"banner"_s] = before[u"banner"_s];
        QCOMPARE(moved(before, now).join(u" "_s), QString());
    }
    const QWidget &place = *till.find("HostBanner");
    QVERIFY(place.mapTo(&till.window(), QPoint(0, place.height())).y() <=
            till.find("Label5")->mapTo(&till.window(), QPoint()).y());
    QVERIFY(isInside(*till.find("Command14"), till.window()));
    QVERIFY(till.find("LV3")->height() >= 60);
    QVERIFY(!till.find("Command14")->visibleRegion().isEmpty());
    QCOMPARE(till.find("Command14")->visibleRegion().boundingRect(), till.find("Command14")->rect());
}

void CounterPlacesTest::bannerIsReplaced()
{
    test::Counter till;
    openForGuests(till);
    const QPointer<QLabel> first = addBanner(u"first"_s);
    const QPointer<QLabel> second = addBanner(u"second"_s);
    QVERIFY(first.isNull());
    QVERIFY(second->isVisible());
    const int height = till.find("HostBanner")->height();
    QVERIFY(guestCounter().setBanner(nullptr));
    QVERIFY(second.isNull());
    settle();
    QCOMPARE(till.find("HostBanner")->height(), height);
    delete addBanner(u"the host's again"_s);
    QVERIFY(guestCounter().setBanner(nullptr));
}

void CounterPlacesTest::bannerFollowsTheDensity()
{
    test::Counter till;
    openForGuests(till);
    addBanner(u"Change"_s);
    for (const QSize &size : {QSize(800, 600), QSize(1280, 860), QSize(1920, 1080)}) {
        till.window().resize(size);
        settle();
        QCOMPARE(till.find("HostBanner")->height(), measuresOf(densityOf(size)).banner);
        QVERIFY(till.find("HostBanner")->height() >= touchHeight);
    }
}

void CounterPlacesTest::keptInSight()
{
    test::Counter till;
    openForGuests(till);
    const auto isKept = [&till](const char *name) {
        const QWidget *part = till.find(name);
        return app::keptInSight(till.window()).contains(QRect(part->mapToGlobal(QPoint()), part->size()));
    };
    addButton(u"Hold"_s);
    addBanner();
    settle();
    QVERIFY(isKept("HostButtons"));
    QVERIFY(isKept("HostBanner"));
}

void CounterPlacesTest::newWindowStartsWithout()
{
    test::Counter till;
    openForGuests(till);
    const QPointer<QPushButton> button = addButton(u"Hold"_s);
    const QPointer<QLabel> banner = addBanner();
    till.close();
    QVERIFY(button.isNull() && banner.isNull());
    till.open();
    QVERIFY(till.window().findChild<QWidget *>(u"HostButtons"_s) == nullptr);
    QVERIFY(addButton(u"Hold"_s) != nullptr);
}

HARROWBY_TEST(counter_places_test, CounterPlacesTest)
#include "counter_places_test.moc"
