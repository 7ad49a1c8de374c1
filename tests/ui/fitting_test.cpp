// SPDX-License-Identifier: MIT
// How the window uses small, tall and large screens.
#include "tests/program/test_program.h"
#include "tests/ui/busy_window.h"

#include "ui/focus_order.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/form_panel.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>
#include <QFrame>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <memory>
#include <set>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using harrowby::test::BusyWindow;

namespace {

constexpr QSize largeScreen(1920, 1080);
constexpr QSize usualScreen(1024, 768);

QRect placeOf(const QWidget &widget)
{
    return {widget.mapTo(widget.window(), QPoint()), widget.size()};
}

/// Whether all of a widget is seen, wherever it may be scrolled.
bool isInView(const QWidget &widget)
{
    return widget.visibleRegion().boundingRect() == widget.rect();
}

const QScrollBar &scrollBarOf(const QFrame *panel)
{
    return *panel->findChild<QScrollArea *>()->verticalScrollBar();
}

} // namespace

class FittingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sellsWithoutScrolling_data();
    void sellsWithoutScrolling();
    void dashboardIsScrolledTo();
    void focusComesIntoView();
    void keypadLeavesWhatItTypesIn_data() { sellsWithoutScrolling_data(); }
    void keypadLeavesWhatItTypesIn();
    void stockListKeepsItsColumns_data();
    void stockListKeepsItsColumns();
    void stockFormShowsItsFigures();
    void tallScreenStacksThePanels();
    void otherSizeAndBack();
    void stackingOutlivesAnotherSize();
    void searchResultFollowsTheShape();
    void growsWithTheScreen();
    void longNameGetsTheRoom();
    void namesBreakBetweenWords_data();
    void namesBreakBetweenWords();

private:
    void show(const QSize &size, int area);

    std::unique_ptr<BusyWindow> m_window;
};

void FittingTest::init()
{
    m_window = std::make_unique<BusyWindow>();
}

void FittingTest::show(const QSize &size, int area)
{
    m_window->resize(size);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->showWorkArea(area);
    QCOMPARE(m_window->size(), size);
}

void FittingTest::sellsWithoutScrolling_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(800, 576), QSize(800, 600), QSize(1024, 576), QSize(1024, 600), QSize(768, 1366),
                             QSize(1366, 744), QSize(1024, 748), largeScreen})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

void FittingTest::sellsWithoutScrolling()
{
    QFETCH(QSize, size);
    show(size, 1);
    const Controls &c = m_window->controls;
    for (const QuickSaleButton *card : c.Command1)
        QVERIFY2(isInView(*card) && card->width() >= 140 && card->height() >= 110, qPrintable(card->objectName()));
    for (const QWidget *widget : std::initializer_list<QWidget *>{
             c.LV3, c.Label5, c.Command14, c.Command12, c.Command13, c.Command25, c.TabStrip2, c.Combo1, c.CmdNext})
        QVERIFY2(isInView(*widget), qPrintable(widget->objectName()));
    const int lines = c.LV3->viewport()->height() / c.LV3->visualRect(c.LV3->rows().index(0, 0)).height();
    QVERIFY2(lines >= 3, qPrintable(QString::number(lines)));
}

void FittingTest::dashboardIsScrolledTo()
{
    show({800, 576}, 1);
    const Controls &c = m_window->controls;
    QVERIFY(isInView(*c.Label6[0])); // its heading stays in view
    QVERIFY(!isInView(*c.Label6[9]));
    c.Label6[9]->setFocus();
    QTRY_VERIFY(isInView(*c.Label6[9]));
    for (const size_t figure : {3, 4, 8})
        QVERIFY(c.Label6[figure]->height() > 0 && c.Label6[figure]->width() > 40);
    show({1024, 768}, 1);
    for (const QLabel *label : c.Label6)
        QVERIFY2(isInView(*label), qPrintable(label->objectName()));
}

void FittingTest::focusComesIntoView()
{
    show({800, 576}, 5);
    const Controls &c = m_window->controls;
    QVERIFY(scrollBarOf(c.Frame9).maximum() > 0);
    m_window->activateWindow();
    c.Check1->setFocus();
    QTRY_VERIFY(c.Check1->hasFocus());
    const std::set<QWidget *> wanted{c.Check2,   c.Text2,    c.Command18, c.List2,   c.Combo16,
                                     c.Command2, c.Command3, c.Combo17,   c.Command4};
    std::set<QWidget *> seen;
    for (int step = 0; step < 20; ++step) {
        QVERIFY(focusNextUncovered(*m_window, true));
        QWidget *focus = m_window->focusWidget();
        if (c.Frame9->isAncestorOf(focus) && isInView(*focus))
            seen.insert(focus);
    }
    for (const QWidget *control : wanted)
        QVERIFY2(seen.contains(const_cast<QWidget *>(control)), qPrintable(control->objectName()));
}

void FittingTest::keypadLeavesWhatItTypesIn()
{
    QFETCH(QSize, size);
    show(size, 7);
    const Controls &c = m_window->controls;
    for (const QWidget *widget :
         std::initializer_list<QWidget *>{c.Combo4, c.Command15, c.Command31, c.Label14, c.Label7, c.Label9, c.Label15})
        QVERIFY2(placeOf(*widget).bottom() < placeOf(*c.Command30[1]).top(), qPrintable(widget->objectName()));
    for (const QPushButton *key : c.Command30)
        QVERIFY(isInView(*key) && key->height() >= 44);
}

void FittingTest::stockListKeepsItsColumns_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("area");
    for (const QSize size :
         {QSize(800, 576), QSize(1024, 576), QSize(1024, 748), QSize(768, 1366), QSize(1366, 744), largeScreen})
        for (const int area : {3, 4})
            QTest::addRow("%dx%d, area %d", size.width(), size.height(), area) << size << area;
}

void FittingTest::stockListKeepsItsColumns()
{
    QFETCH(QSize, size);
    QFETCH(int, area);
    show(size, area);
    const RowList &list = *m_window->controls.LV;
    QVERIFY(list.header()->length() <= list.viewport()->width());
    const QFontMetrics metrics = list.fontMetrics();
    QVERIFY(list.columnWidth(1) >= metrics.horizontalAdvance(u"CHOCOLATES"_s) + 14);
    QVERIFY(list.columnWidth(2) >= metrics.horizontalAdvance(u"BEVERAGES"_s) + 14);
    QVERIFY(list.viewport()->height() >= 3 * list.visualRect(list.rows().index(0, 0)).height());
    QVERIFY(isInView(*m_window->controls.Command7));
}

void FittingTest::stockFormShowsItsFigures()
{
    show(usualScreen, 3);
    const Controls &c = m_window->controls;
    for (const auto &[list, text] : {std::pair(c.Combo8, u"12,345.50"_s), std::pair(c.Combo13, u"1,000"_s),
                                     std::pair(c.Combo14, u"100,000"_s), std::pair(c.Combo15, u"Disabled"_s)}) {
        const QLineEdit &entry = *list->lineEdit();
        QVERIFY2(entry.fontMetrics().horizontalAdvance(text) <= entry.contentsRect().width() - 4, qPrintable(text));
    }
}

void FittingTest::tallScreenStacksThePanels()
{
    show({768, 1366}, 1);
    const Controls &c = m_window->controls;
    QVERIFY(placeOf(*c.Frame2).top() >= placeOf(*c.Frame1).bottom());
    QCOMPARE(c.Frame1->width(), c.Frame2->width());
    for (const QLabel *label : c.Label6)
        QVERIFY2(isInView(*label), qPrintable(label->objectName()));
    m_window->showWorkArea(WorkArea::EditStock);
    QVERIFY(placeOf(*c.Frame10).top() >= placeOf(*c.Frame7).bottom());
    QVERIFY(isCovered(*c.Command14, *m_window)); // the list lies over the side area
}

void FittingTest::otherSizeAndBack()
{
    show(usualScreen, 3);
    const Controls &c = m_window->controls;
    const auto places = [&] {
        std::vector<QRect> all;
        for (const QWidget *control :
             std::initializer_list<QWidget *>{c.Combo5, c.Combo15, c.Command26, c.LV, c.Command7})
            all.push_back(placeOf(*control));
        return all;
    };
    const auto before = places();
    for (const QSize size : {QSize(800, 600), QSize(768, 1366), largeScreen, QSize(1024, 600)}) {
        show(size, 3);
        QVERIFY(places() != before);
    }
    show(usualScreen, 3);
    QVERIFY(places() == before);
}

void FittingTest::stackingOutlivesAnotherSize()
{
    show(usualScreen, 7);
    m_window->resize(800, 600);
    QCoreApplication::processEvents();
    const Controls &c = m_window->controls;
    QVERIFY(isInView(*c.Command30[11])); // the keypad is still in front
    QVERIFY(c.Frame1->isHidden() && c.Frame7->isHidden() && c.Frame11->isHidden());
}

void FittingTest::searchResultFollowsTheShape()
{
    show(usualScreen, 9);
    const Controls &c = m_window->controls;
    QVERIFY(placeOf(*c.Frame11).left() >= placeOf(*c.Frame8).right());
    m_window->resize(800, 600);
    QCoreApplication::processEvents();
    QVERIFY(placeOf(*c.Frame11).top() >= placeOf(*c.Frame8).bottom());
    QVERIFY(isInView(*c.Command9) && isInView(*c.Combo11));
}

void FittingTest::growsWithTheScreen()
{
    struct Sizes
    {
        int font, row, button, entry, cart;
    };
    const auto measure = [&](const QSize &size) {
        show(size, 2);
        const Controls &c = m_window->controls;
        return Sizes{QFontMetrics(c.LV3->font()).height(), c.LV3->visualRect(c.LV3->rows().index(0, 0)).height(),
                     c.Command15->height(), c.Combo3->height(), c.LV3->width()};
    };
    const Sizes usual = measure(usualScreen);
    const Sizes large = measure(largeScreen);
    QVERIFY(large.font * 100 >= usual.font * 115);
    QVERIFY(large.row * 100 >= usual.row * 115);
    QVERIFY(large.button * 100 >= usual.button * 115);
    QVERIFY(large.entry * 100 >= usual.entry * 115);
    QVERIFY(large.cart * 100 >= usual.cart * 140);
}

void FittingTest::longNameGetsTheRoom()
{
    show(largeScreen, 3);
    const RowList &list = *m_window->controls.LV;
    const QFontMetrics metrics = list.fontMetrics();
    QVERIFY(list.columnWidth(1) > list.viewport()->width() * 40 / 100);
    QVERIFY(list.columnWidth(1) > metrics.horizontalAdvance(QString(40, u'N')));
    QVERIFY(list.columnWidth(7) <= metrics.horizontalAdvance(u"22-Oct-26 10:22:33"_s) + 20);
    QVERIFY(list.columnWidth(2) <= list.columnWidth(1) / 3);
}

void FittingTest::namesBreakBetweenWords_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(142, 112), QSize(150, 120), QSize(160, 130), QSize(180, 160), QSize(194, 165),
                             QSize(200, 150), QSize(420, 260)})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

void FittingTest::namesBreakBetweenWords()
{
    QFETCH(QSize, size);
    QuickSaleButton card;
    card.resize(size);
    for (const QString &name : {u"AA BATTERIES 8 PACK RECHARGEABLE LONG LIFE"_s, u"CONDENSED MILK"_s,
                                u"BISCUITS CHOCOLATE"_s, u"NOTEBOOK A5 HARDCOVER LINED WITH ELASTIC BAND"_s}) {
        card.setText(u"AAA-0001\r\n"_s + name + u"\r\n1.00"_s);
        const QStringList words = name.split(u' ');
        const QStringList lines = card.nameLines();
        QVERIFY(!lines.isEmpty());
        for (QString line : lines) {
            line.remove(u'\u2026');
            for (const QString &word : line.split(u' ', Qt::SkipEmptyParts))
                QVERIFY2(words.contains(word), qPrintable(lines.join(u" / "_s)));
        }
    }
    // A word wider than every card has to be broken.
    card.setText(u"AAA-0001\r\n%1\r\n1.00"_s.arg(QString(120, u'W')));
    QVERIFY(card.nameLines().size() > 1);
    card.setText(u"(empty)"_s);
    QVERIFY(card.nameLines().isEmpty());
}

HARROWBY_TEST(fitting_test, FittingTest)
#include "fitting_test.moc"
