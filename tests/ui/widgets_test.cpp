// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/ui/widget_use.h"

#include "theme/colours.h"
#include "theme/style.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/entry_edit.h"
#include "ui/widgets/link_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/plain_tool_tip.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPixmapCache>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocumentFragment>
#include <QToolTip>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

/// What a person sees as the tool tip of a widget.
QString shownToolTip(QWidget &widget)
{
    QToolTip::hideText();
    const QPoint centre = widget.rect().center();
    QHelpEvent event(QEvent::ToolTip, centre, widget.mapToGlobal(centre));
    QCoreApplication::sendEvent(&widget, &event);
    return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText().remove(QChar(0x200B));
}

} // namespace

/// What the smaller widgets of the window promise, one at a time.
class WidgetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linkIsPressedEveryWay();
    void tabStripClicks();
    void tabStripGoesToATabByItsKey();
    void tabStripAsksBeforeAChoice_data();
    void tabStripAsksBeforeAChoice();
    void tabStripSelectsFromCode();
    void cardKeepsItsCaption_data();
    void cardKeepsItsCaption();
    void cardIsReadOut();
    void cardShowsThatItIsOutOfStock();
    void cardLooksAsIfNothingWereKept();
    void labelElides();
    void labelOfALevelShowsThatItIsLow();
    void entryShowsItsStart();
    void toolTipsArePlain_data();
    void toolTipsArePlain();
};

void WidgetsTest::linkIsPressedEveryWay()
{
    LinkLabel link;
    link.setText(u"  7"_s);
    link.show();
    QSignalSpy clicked(&link, &LinkLabel::clicked);
    QTest::mouseClick(&link, Qt::LeftButton);
    QTest::keyClick(&link, Qt::Key_Return);
    QTest::keyClick(&link, Qt::Key_Space);
    QTest::keyClick(&link, Qt::Key_A);
    QTest::mouseClick(&link, Qt::RightButton);
    QCOMPARE(clicked.size(), 3);
    QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(&link);
    QCOMPARE(reader->role(), QAccessible::Link);
    QCOMPARE(reader->text(QAccessible::Name), u"  7"_s);
    QVERIFY(reader->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    reader->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(clicked.size(), 4);
}

void WidgetsTest::tabStripClicks()
{
    TabStrip strip;
    for (const auto &caption : {u"One"_s, u"Two"_s, u"Three"_s})
        strip.addTab(caption);
    strip.resize(strip.sizeHint());
    strip.show();
    QVERIFY(QTest::qWaitForWindowExposed(&strip));
    const QSignalSpy clicked(&strip, &TabStrip::tabClicked);
    const auto click = [&](int number) {
        QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(number - 1).center());
    };
    QCOMPARE(strip.selectedTab(), 1);
    QCOMPARE(clicked.count(), 0);
    click(2);
    QCOMPARE(strip.selectedTab(), 2);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.last().first().toInt(), 2);
    click(2);
    QCOMPARE(clicked.count(), 2);
    QTest::mouseClick(&strip, Qt::RightButton, {}, strip.tabRect(0).center());
    QCOMPARE(clicked.count(), 2);
    QTest::keyClick(&strip, Qt::Key_Right);
    QCOMPARE(strip.selectedTab(), 3);
    QCOMPARE(clicked.count(), 3);
    QTest::keyClick(&strip, Qt::Key_Space);
    QCOMPARE(clicked.count(), 4);
    for (const int steps : {1, -1, 3}) { // who scrolls over it means no tab
        turnWheel(strip, steps);
        QCOMPARE(strip.selectedTab(), 3);
        QCOMPARE(clicked.count(), 4);
    }
}

void WidgetsTest::tabStripGoesToATabByItsKey()
{
    TabStrip strip;
    for (const QString &caption : {u"One"_s, u"Two"_s, u"Three"_s})
        strip.addTab(caption);
    QStringList asked;
    strip.beforeClick = [&] {
        asked << QString::number(strip.selectedTab());
        return true;
    };
    const auto tabAfter = [&strip](Qt::Key key) {
        QTest::keyClick(&strip, key);
        return strip.selectedTab();
    };
    QCOMPARE(tabAfter(Qt::Key_3), 3);
    QCOMPARE(tabAfter(Qt::Key_1), 1);
    QCOMPARE(tabAfter(Qt::Key_End), 3);
    QCOMPARE(tabAfter(Qt::Key_Home), 1);
    QCOMPARE(tabAfter(Qt::Key_2), 2);
    QCOMPARE(asked, (QStringList{u"1"_s, u"3"_s, u"1"_s, u"3"_s, u"1"_s})); // no tab on the way is entered
    QCOMPARE(tabAfter(Qt::Key_0), 2);
    QCOMPARE(tabAfter(Qt::Key_4), 2);
}

void WidgetsTest::tabStripAsksBeforeAChoice_data()
{
    using Choose = std::function<void(TabStrip &)>;
    QTest::addColumn<Choose>("choose");
    QTest::newRow("mouse") << Choose(
        [](TabStrip &strip) { QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(1).center()); });
    QTest::newRow("same tab") << Choose(
        [](TabStrip &strip) { QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(0).center()); });
    QTest::newRow("key") << Choose([](TabStrip &strip) { QTest::keyClick(&strip, Qt::Key_Right); });
    QTest::newRow("number") << Choose([](TabStrip &strip) { QTest::keyClick(&strip, Qt::Key_2); });
    QTest::newRow("screen reader") << Choose([](TabStrip &strip) {
        QAccessible::queryAccessibleInterface(&strip)->child(1)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
    });
}

void WidgetsTest::tabStripAsksBeforeAChoice()
{
    QFETCH(std::function<void(TabStrip &)>, choose);
    TabStrip strip;
    strip.addTab(u"One"_s);
    strip.addTab(u"Two"_s);
    strip.resize(strip.sizeHint());
    strip.show();
    QVERIFY(QTest::qWaitForWindowExposed(&strip));
    int asked = 0;
    bool answer = false;
    int shownWhenAsked = 0;
    strip.beforeClick = [&] {
        ++asked;
        shownWhenAsked = strip.selectedTab();
        return answer;
    };
    const QSignalSpy clicked(&strip, &TabStrip::tabClicked);
    choose(strip);
    QCOMPARE(asked, 1);
    QCOMPARE(shownWhenAsked, 1);
    QCOMPARE(strip.selectedTab(), 1);
    QCOMPARE(clicked.count(), 0);
    answer = true;
    choose(strip);
    QCOMPARE(asked, 2);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.last().first().toInt(), strip.selectedTab());
}

void WidgetsTest::tabStripSelectsFromCode()
{
    TabStrip strip;
    strip.addTab(u"One"_s);
    strip.addTab(u"Two"_s);
    strip.beforeClick = [] { return false; };
    const QSignalSpy clicked(&strip, &TabStrip::tabClicked);
    strip.selectTab(1);
    QCOMPARE(clicked.count(), 1);
    strip.selectTab(2);
    QCOMPARE(strip.selectedTab(), 2);
    QCOMPARE(clicked.count(), 2);
    strip.selectTab(0);
    strip.selectTab(3);
    QCOMPARE(strip.selectedTab(), 2);
    QCOMPARE(clicked.count(), 2);
}

void WidgetsTest::cardKeepsItsCaption_data()
{
    QTest::addColumn<QString>("caption");
    QTest::newRow("item") << u"12\r\nMILK\r\n1,250.00"_s;
    QTest::newRow("ampersand") << u"1\r\nM & M\r\n1.00"_s;
    QTest::newRow("accelerator") << u"1\r\n&TEA\r\n1.00"_s;
    QTest::newRow("markup") << u"1\r\n<b>X</b>\r\n1.00"_s;
    QTest::newRow("empty") << u"(empty)"_s;
    QTest::newRow("no name") << u"1"_s;
    QTest::newRow("nothing") << QString();
    QTest::newRow("long") << u"1\r\n"_s + QString(10000, u'W') + u"\r\n1.00"_s;
    QTest::newRow("right to left") << u"1\r\n\u05D7\u05DC\u05D1 \U0001F95B\r\n1.00"_s;
}

void WidgetsTest::cardKeepsItsCaption()
{
    QFETCH(QString, caption);
    QuickSaleButton card;
    QCOMPARE(card.text(), u"(empty)"_s);
    card.setText(caption);
    QCOMPARE(card.text(), caption);
    QVERIFY(card.shortcut().isEmpty());
    card.setToolTip(QString(caption).replace(u"\r\n"_s, u"  |  "_s));
    QCOMPARE(shownToolTip(card), card.toolTip());
    QToolTip::hideText();
    for (const QSize size : {card.minimumSizeHint(), card.sizeHint(), QSize(420, 300)}) {
        card.resize(size);
        QVERIFY(!card.grab().isNull());
    }
    const QSignalSpy clicked(&card, &QAbstractButton::clicked);
    QTest::mouseClick(&card, Qt::LeftButton);
    QTest::keyClick(&card, Qt::Key_Space);
    QCOMPARE(clicked.count(), 2);
    QTest::keyClick(&card, Qt::Key_Return);
    QTest::keyClick(&card, Qt::Key_Enter);
    QCOMPARE(clicked.count(), 2);
}

void WidgetsTest::cardIsReadOut()
{
    QuickSaleButton card;
    card.setText(u"12\r\nM & M\r\n1.50"_s);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&card);
    QCOMPARE(interface->role(), QAccessible::Button);
    QCOMPARE(interface->text(QAccessible::Name), u"M & M, 1.50"_s);
    QCOMPARE(interface->text(QAccessible::Description), u"Stock ID 12"_s);
    card.setOutOfStock(true);
    QCOMPARE(interface->text(QAccessible::Description), u"Stock ID 12, out of stock"_s);
    card.setText(u"(empty)"_s);
    QCOMPARE(interface->text(QAccessible::Name), u"(empty)"_s);
}

void WidgetsTest::cardShowsThatItIsOutOfStock()
{
    QuickSaleButton card;
    card.resize(200, 150);
    card.setText(u"12\r\nMILK\r\n1.50"_s);
    const QColor danger = Colours::current().danger;
    const QPoint inBand(20, 10);
    QVERIFY(card.grab().toImage().pixelColor(inBand) != danger);
    card.setOutOfStock(true);
    QVERIFY(card.isOutOfStock());
    QCOMPARE(card.grab().toImage().pixelColor(inBand), danger);
    card.setOutOfStock(false);
    QVERIFY(card.grab().toImage().pixelColor(inBand) != danger);
}

/// What is kept of one card's picture is another one's only where both look alike.
void WidgetsTest::cardLooksAsIfNothingWereKept()
{
    const auto pictures = [](bool isKept) {
        QList<QImage> all;
        for (const QSize size : {QSize(200, 150), QSize(420, 150), QSize(200, 300)})
            for (const bool isBlank : {false, true})
                for (const bool isDown : {false, true}) {
                    if (!isKept)
                        QPixmapCache::clear();
                    QuickSaleButton card;
                    card.resize(size);
                    if (!isBlank)
                        card.setText(u"12\r\nMILK\r\n1.50"_s);
                    card.setDown(isDown);
                    all << card.grab().toImage();
                }
        return all;
    };
    const QList<QImage> fresh = pictures(false);
    QCOMPARE(pictures(true), fresh);
    for (qsizetype i = 0; i < fresh.size(); ++i)
        QCOMPARE(fresh.indexOf(fresh[i]), i); // each looks different
}

void WidgetsTest::labelElides()
{
    ElidedLabel label;
    label.resize(120, 30);
    QCOMPARE(label.textFormat(), Qt::PlainText);
    label.setText(u"  7"_s);
    label.grab();
    QCOMPARE(label.text(), u"  7"_s);
    QCOMPARE(label.toolTip(), QString());
    const QString longText = u"<b>"_s + QString(200, u'W') + u" & more"_s;
    label.setText(longText);
    label.grab();
    QCOMPARE(label.text(), longText);
    QCOMPARE(label.toolTip(), longText);
    QCOMPARE(shownToolTip(label), longText);
    QVERIFY(label.minimumSizeHint().width() < 120);
    label.setText(u"short"_s);
    label.grab();
    QCOMPARE(label.toolTip(), QString());
}

void WidgetsTest::labelOfALevelShowsThatItIsLow()
{
    LevelLabel label;
    label.resize(120, 44);
    label.setText(u"20"_s);
    const QPoint ground(60, 5);
    QCOMPARE(label.grab().toImage().pixelColor(ground), Colours::current().level);
    label.setLow(true);
    QCOMPARE(label.grab().toImage().pixelColor(ground), Colours::current().lowLevel);
    QCOMPARE(label.text(), u"20"_s);
}

void WidgetsTest::entryShowsItsStart()
{
    EntryEdit entry;
    entry.resize(120, 44);
    entry.setText(u"short"_s);
    QVERIFY(!entry.isTooLong());
    const QString longText = u"<i>"_s + QString(100, u'W');
    entry.setText(longText);
    QVERIFY(entry.isTooLong());
    QCOMPARE(entry.cursorPosition(), 0);
    QCOMPARE(shownToolTip(entry), longText);
    QToolTip::hideText();
    entry.setEchoMode(QLineEdit::Password);
    QVERIFY(!entry.isTooLong());
}

void WidgetsTest::toolTipsArePlain_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << u"M & M"_s;
    QTest::newRow("markup") << u"<b>X</b>"_s;
    QTest::newRow("entity") << u"&lt;b&gt;"_s;
    QTest::newRow("blanks") << u"12  |  Milk"_s;
    QTest::newRow("lines") << u"one\ntwo"_s;
    QTest::newRow("long word") << QString(10000, u'W');
    QTest::newRow("emoji") << u"\U0001F95B"_s.repeated(200);
}

void WidgetsTest::toolTipsArePlain()
{
    QFETCH(QString, text);
    const QString html = asPlainRichText(text);
    QVERIFY(Qt::mightBeRichText(html));
    QCOMPARE(QTextDocumentFragment::fromHtml(html).toPlainText().remove(QChar(0x200B)), text);
}

HARROWBY_TEST(widgets_test, WidgetsTest)
#include "widgets_test.moc"
