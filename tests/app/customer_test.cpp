// SPDX-License-Identifier: MIT
#include "app/customer/customer_screen.h"
#include "app/customer/fitted_text.h"
#include "tests/platform/log_capture.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "theme/palettes.h"

#include <harrowby/counter.h>

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <QSet>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

namespace {

using Kind = CustomerPage::Kind;
using Row = CounterPurchase::Row;

constexpr QRect left(0, 0, 800, 600);
constexpr QRect right(800, 0, 1024, 768);
constexpr QRect upright(1824, 0, 600, 1024);

const QList<ScreenFacts> three = {{u"eDP-1"_s, left}, {u"HDMI-1"_s, right}, {u"DP-2"_s, upright}};

std::vector<CounterLine> someLines(std::size_t count)
{
    std::vector<CounterLine> lines;
    for (std::size_t number = 0; number < count; ++number)
        lines.push_back({u"ID%1"_s.arg(number), u"ITEM %1"_s.arg(number), 1, 1.5, false});
    return lines;
}

CounterPurchase purchaseOf(float total, Row row)
{
    CounterPurchase purchase;
    purchase.total = total;
    purchase.row = row;
    return purchase;
}

QImage imageOf(const CustomerPage &page, const QSize &size)
{
    CustomerView view;
    view.resize(size);
    view.setPage(page);
    return view.grab().toImage();
}

} // namespace

/// What the customer sees, and where.
class CustomerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void placeOfTheScreen_data();
    void placeOfTheScreen();
    void edgesOfTheTillDoNotCount();
    void lastItemIsTheOneThatWasAdded();
    void namesAreMadeFit();
    void thanksStayUntilTheNextItem();
    void nobodyIsThankedForWhatWasNotSold();
    void linesInSight_data();
    void linesInSight();
    void lettersAreMadeFit();
    void everyPageIsPainted_data();
    void everyPageIsPainted();
    void tillIsFollowed();
    void windowTakesNothing();
    void screensComeAndGo();
    void tillOnTheCustomersScreen();
    void closedTillTakesItAway();

private:
    void openTill();
    void screensAre(const QList<ScreenFacts> &screens);
    [[nodiscard]] QString said() const { return m_customer->view().text(); }
    [[nodiscard]] bool isOn(const QRect &screen) const
    {
        return m_customer->view().isVisible() && m_customer->view().geometry() == screen;
    }

    QList<ScreenFacts> m_there;
    std::unique_ptr<test::Counter> m_counter;
    std::unique_ptr<CustomerScreen> m_customer;
};

void CustomerTest::cleanup()
{
    m_customer.reset();
    m_counter.reset();
}

/// The till's window lies on the first screen.
void CustomerTest::openTill()
{
    m_counter = std::make_unique<test::Counter>();
    m_counter->file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30);
    m_customer = std::make_unique<CustomerScreen>(harrowby::Counter::instance(), u"The Corner Shop"_s, u"EUR"_s,
                                                  QString(), [this] { return m_there; });
    m_counter->open();
    m_counter->window().setGeometry(left);
    QCoreApplication::sendPostedEvents();
    m_counter->logIn();
    QCoreApplication::processEvents();
}

void CustomerTest::screensAre(const QList<ScreenFacts> &screens)
{
    m_there = screens;
    Q_EMIT qGuiApp->primaryScreenChanged(qGuiApp->primaryScreen()); // what the system says when they change
}

void CustomerTest::placeOfTheScreen_data()
{
    QTest::addColumn<QList<ScreenFacts>>("screens");
    QTest::addColumn<QString>("wish");
    QTest::addColumn<QRect>("till");
    QTest::addColumn<QString>("place");
    const QList<ScreenFacts> mirrored = {{u"eDP-1"_s, left}, {u"HDMI-1"_s, left}};
    QTest::newRow("one screen") << three.first(1) << QString() << left << QString();
    QTest::newRow("none") << QList<ScreenFacts>() << QString() << left << QString();
    QTest::newRow("the second one") << three.first(2) << QString() << left << u"HDMI-1"_s;
    QTest::newRow("till on the second one") << three.first(2) << QString() << right << u"eDP-1"_s;
    QTest::newRow("by number") << three << u"3"_s << left << u"DP-2"_s;
    QTest::newRow("by name") << three << u"hdmi-1"_s << left << u"HDMI-1"_s;
    QTest::newRow("no such number") << three << u"4"_s << left << QString();
    QTest::newRow("no such name") << three << u"VGA-1"_s << left << QString();
    QTest::newRow("the till's own") << three << u"1"_s << left << QString();
    QTest::newRow("the till's own by name") << three << u"DP-2"_s << upright << QString();
    QTest::newRow("both show the same") << mirrored << QString() << left << QString();
    QTest::newRow("both show the same, by name") << mirrored << u"HDMI-1"_s << left << QString();
}

void CustomerTest::placeOfTheScreen()
{
    QFETCH(QList<ScreenFacts>, screens);
    QFETCH(QString, wish);
    QFETCH(QRect, till);
    QFETCH(QString, place);
    const auto found = customerPlace(screens, wish, {till, till});
    QCOMPARE(found ? found->name : QString(), place);
}

void CustomerTest::edgesOfTheTillDoNotCount()
{
    QVERIFY(!coversTill(right, {left, left.adjusted(-8, -8, 8, 8)}));
    QVERIFY(coversTill(right, {left, left.translated(100, 0)}));
    QCOMPARE(screensText(three.first(2)), u"1 eDP-1 (800x600 at 0,0), 2 HDMI-1 (1024x768 at 800,0)"_s);
}

void CustomerTest::lastItemIsTheOneThatWasAdded()
{
    CustomerStory story(u"SHOP"_s, QString());
    QVERIFY(story.page().kind == Kind::Welcome);
    std::vector<CounterLine> lines = someLines(3);
    story.followCart(lines, 4.5);
    QVERIFY(story.page().kind == Kind::Cart);
    QVERIFY(story.page().last == 2U);
    lines[0].quantity = 2; // the same item again
    story.followCart(lines, 6);
    QVERIFY(story.page().last == 0U);
    lines[1].cost = 1; // another price is no other item
    lines.pop_back();
    story.followCart(lines, 4);
    QVERIFY(story.page().last == 0U);
    lines.erase(lines.begin());
    story.followCart(lines, 1);
    QVERIFY(!story.page().last);
    story.followCart({}, 0);
    QVERIFY(story.page().kind == Kind::Welcome);
}

void CustomerTest::namesAreMadeFit()
{
    CustomerStory story(u"SHOP\nOF MINE"_s, QString());
    QCOMPARE(story.page().title, u"SHOP OF MINE"_s);
    const QString faces = QString(119, u'A') + u"\U0001F600"_s; // cut in the middle of the face
    const QString turned = u"TEA \u202e\u0007)005("_s;
    story.followCart(
        {{u"1"_s, QString(10000, u'W'), 1, 1, false}, {u"2"_s, faces, 1, 1, false}, {u"3"_s, turned, 1, 1, false}}, 3);
    QCOMPARE(story.page().lines[0].name, QString(120, u'W'));
    QCOMPARE(story.page().lines[1].name, QString(119, u'A'));
    QCOMPARE(story.page().lines[2].name, u"TEA )005("_s);
}

void CustomerTest::thanksStayUntilTheNextItem()
{
    CustomerStory story(u"SHOP"_s, u"EUR"_s);
    story.followCart(someLines(1), 1.5);
    story.followCart({}, 0);
    story.followPurchase(purchaseOf(12.35F, Row::Written));
    QCOMPARE(customerTexts(story.page()), (QStringList{u"SHOP"_s, u"Thank you!"_s, u"Total EUR\u00a012.35"_s}));
    story.followChange(7.65);
    QCOMPARE(customerTexts(story.page()),
             (QStringList{u"SHOP"_s, u"Thank you!"_s, u"Total EUR\u00a012.35"_s, u"Change EUR\u00a07.65"_s}));
    story.followCart(someLines(1), 1.5);
    QVERIFY(story.page().kind == Kind::Cart);
    story.followCart({}, 0);
    story.followPurchase(purchaseOf(1.5F, Row::NotKnown));
    QCOMPARE(story.page().change, 0.0); // the last customer's is forgotten
    story.end();
    QCOMPARE(customerTexts(story.page()), (QStringList{u"SHOP"_s, u"Welcome"_s}));
}

void CustomerTest::nobodyIsThankedForWhatWasNotSold()
{
    CustomerStory story({}, {});
    story.followCart({}, 0);
    story.followPurchase(purchaseOf(5, Row::NotWritten));
    QVERIFY(story.page().kind == Kind::Welcome);
    // A cart that was filled meanwhile is in front.
    story.followCart(someLines(1), 1.5);
    story.followPurchase(purchaseOf(5, Row::Written));
    QVERIFY(story.page().kind == Kind::Cart);
}

void CustomerTest::linesInSight_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count");
    QTest::newRow("one") << 1 << 0 << 10 << 0 << 1;
    QTest::newRow("all") << 10 << 3 << 10 << 0 << 10;
    QTest::newRow("the end") << 200 << 199 << 10 << 191 << 9;
    QTest::newRow("near the end") << 200 << 191 << 10 << 191 << 9;
    QTest::newRow("in the middle") << 200 << 190 << 10 << 183 << 8;
    QTest::newRow("after the beginning") << 200 << 9 << 10 << 2 << 8;
    QTest::newRow("the beginning") << 200 << 8 << 10 << 0 << 9;
    QTest::newRow("two rows") << 5 << 2 << 2 << 2 << 1;
    QTest::newRow("one row") << 5 << 4 << 1 << 4 << 1;
}

void CustomerTest::linesInSight()
{
    QFETCH(int, lines);
    QFETCH(int, last);
    QFETCH(int, rows);
    QFETCH(int, first);
    QFETCH(int, count);
    const LinesInSight sight = app::linesInSight(static_cast<std::size_t>(lines), static_cast<std::size_t>(last),
                                                 static_cast<std::size_t>(rows));
    QCOMPARE(static_cast<int>(sight.first), first);
    QCOMPARE(static_cast<int>(sight.count), count);
    QVERIFY(first <= last && last < first + count);
}

void CustomerTest::lettersAreMadeFit()
{
    const QFont font = QApplication::font();
    QCOMPARE(fittedFont(font, u"1.00"_s, {1000, 300}, 100, 20).pixelSize(), 100);
    const QString wide = u"1,234,567,890.00"_s;
    const QFont fitted = fittedFont(font, wide, {400, 300}, 100, 20);
    QVERIFY(QFontMetrics(fitted).horizontalAdvance(wide) <= 400);
    QVERIFY(fitted.pixelSize() > 20);
    QCOMPARE(shownText(QFontMetrics(fitted), wide, 400), wide);
    for (int width = 60; width < 900; ++width) { // an amount that is made fit is never cut
        const QFont total = fittedFont(font, u"34.43"_s, {width, 300}, 200, 20);
        QCOMPARE(shownText(QFontMetrics(total), u"34.43"_s, width), u"34.43"_s);
    }
    QVERIFY(shownText(QFontMetrics(fitted), wide, 300).endsWith(u'\u2026'));
    QCOMPARE(fittedFont(font, QString(1000, u'W'), {400, 300}, 100, 20).pixelSize(), 20);
    QCOMPARE(fittedFont(font, wide, {0, 0}, 100, 20).pixelSize(), 20);
}

void CustomerTest::everyPageIsPainted_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("small") << QSize(800, 480);
    QTest::newRow("upright") << QSize(600, 1024);
    QTest::newRow("tiny") << QSize(120, 40);
}

/// Nothing may be cut short by what is odd; how it looks is seen in the pictures of the guide.
void CustomerTest::everyPageIsPainted()
{
    QFETCH(QSize, size);
    CustomerStory story(QString(200, u'M'), u"EUR"_s);
    std::vector<CounterLine> lines = someLines(200);
    lines[50].name = u"\u062d\u0644\u064a\u0628 \u0643\u0627\u0645\u0644 \u0627\u0644\u062f\u0633\u0645"_s.repeated(8);
    lines[51] = {u"x"_s, QString(), 99999.5, 1e30, false};
    for (const QPalette &palette : {lightPalette(), darkPalette()}) {
        QApplication::setPalette(palette);
        story.end();
        QSet<QByteArray> pictures;
        const auto look = [&] {
            const QImage image = imageOf(story.page(), size);
            pictures << QByteArray(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
        };
        look();
        story.followCart(someLines(1), 1e12);
        look();
        story.followCart(lines, 300);
        look();
        story.followCart({}, 0);
        story.followPurchase(purchaseOf(1e9F, Row::Written));
        look();
        story.followChange(1234567.89);
        look();
        QCOMPARE(pictures.size(), 5); // each page has its own
    }
}

void CustomerTest::tillIsFollowed()
{
    m_there = three;
    openTill();
    QTRY_VERIFY(isOn(right));
    QCOMPARE(said(), u"The Corner Shop\nWelcome"_s);
    (void)harrowby::Counter::instance().sell(u"A1"_s, 2);
    QCoreApplication::sendPostedEvents();
    // No ID, no stock, no user.
    QCOMPARE(said(), u"The Corner Shop\nTEA\n2 | TEA | 5.00\nTotal EUR\u00a05.00"_s);
    m_counter->boxes.expect(u"Item List:\r\n\r\n1. 2 x A1  |  TEA = 5.00\r\n\r\n\r\n\r\nPurchased Cart?"_s, box::Ask,
                            Answer::Yes);
    QCOMPARE(harrowby::Counter::instance().purchase(), CounterAnswer::Done);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(said(), u"The Corner Shop\nThank you!\nTotal EUR\u00a05.00"_s);
    m_customer->showChange(15);
    QCOMPARE(said(), u"The Corner Shop\nThank you!\nTotal EUR\u00a05.00\nChange EUR\u00a015.00"_s);
}

void CustomerTest::windowTakesNothing()
{
    m_there = three;
    openTill();
    const CustomerView &view = m_customer->view();
    QTRY_VERIFY(view.isVisible());
    QVERIFY(view.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    QVERIFY(view.testAttribute(Qt::WA_ShowWithoutActivating));
    QVERIFY(!view.testAttribute(Qt::WA_QuitOnClose));
    QCOMPARE(view.focusPolicy(), Qt::NoFocus);
    QVERIFY(view.findChildren<QWidget *>().isEmpty());
}

void CustomerTest::screensComeAndGo()
{
    const testing::LogCapture log;
    m_there = three.first(1);
    openTill();
    QVERIFY(!m_customer->view().isVisible());
    QVERIFY(log.hasLine({u"There is no screen beside the till's for the customer. Screens: 1 eDP-1"_s}));
    screensAre(three.first(2));
    QTRY_VERIFY(isOn(right));
    (void)harrowby::Counter::instance().sell(u"A1"_s);
    screensAre(three.first(1));
    QVERIFY(!m_customer->view().isVisible()); // at once: Qt would move it to the till's
    QCoreApplication::processEvents();
    QVERIFY(!m_customer->view().isVisible());
    screensAre({three[0], three[2]});
    QTRY_VERIFY(isOn(upright));
    screensAre(three); // the one that it is on is still there, but another one is the second
    QTRY_VERIFY(isOn(right));
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
}

void CustomerTest::tillOnTheCustomersScreen()
{
    m_there = {three[0], three[1]};
    openTill();
    QTRY_VERIFY(isOn(right));
    m_counter->window().setGeometry(right);
    QTRY_VERIFY(!m_customer->view().isVisible()); // the till is known to the system as on the first one, too
    m_counter->window().setGeometry(left);
    QTRY_VERIFY(isOn(right));
}

void CustomerTest::closedTillTakesItAway()
{
    m_there = three;
    openTill();
    QTRY_VERIFY(isOn(right));
    (void)harrowby::Counter::instance().sell(u"A1"_s);
    QCoreApplication::sendPostedEvents();
    m_counter->close();
    QCoreApplication::sendPostedEvents();
    QVERIFY(!m_customer->view().isVisible());
    QCOMPARE(said(), u"The Corner Shop\nWelcome"_s);
}

HARROWBY_TEST(app_customer_test, CustomerTest)
#include "customer_test.moc"
