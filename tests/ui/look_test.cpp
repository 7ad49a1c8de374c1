// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/ui/busy_window.h"

#include "theme/colours.h"
#include "ui/focus_order.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>

#include <memory>
#include <set>

using namespace Qt::StringLiterals;
using namespace harrowby;
using harrowby::test::BusyWindow;
using harrowby::test::darkPalette;
using harrowby::test::lightPalette;

namespace {

constexpr int touch = 44;

constexpr int controlGap = 8;

constexpr int allAreas = harrowby::test::workAreas;

bool isControl(const QWidget &widget)
{
    if (widget.inherits("QComboBox") || widget.inherits("QAbstractButton"))
        return true;
    return widget.inherits("QLineEdit") && !widget.parentWidget()->inherits("QComboBox");
}

/// The area in which a widget is scrolled; null for one that stays where it is.
const QScrollArea *scrollerOf(const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        if (const auto *area = qobject_cast<const QScrollArea *>(parent))
            return area;
    }
    return nullptr;
}

QRect placeIn(const QWidget &ancestor, const QWidget &widget)
{
    return {widget.mapTo(&ancestor, QPoint()), widget.size()};
}

bool somethingScrolls(const QMainWindow &window)
{
    const auto areas = window.findChildren<QScrollArea *>();
    return std::any_of(areas.begin(), areas.end(), [](const QScrollArea *area) {
        return area->isVisible() && area->verticalScrollBar()->maximum() > 0;
    });
}

/// Whether the middle and all corners of a control are seen.
bool isSeenWhole(const QWidget &widget, const QMainWindow &window)
{
    const QRect inner = widget.rect().adjusted(1, 1, -1, -1);
    for (const QPoint &point :
         {inner.center(), inner.topLeft(), inner.topRight(), inner.bottomLeft(), inner.bottomRight()}) {
        const QWidget *top = window.childAt(widget.mapTo(&window, point));
        if (top != &widget && !widget.isAncestorOf(top))
            return false;
    }
    return true;
}

/// Controls that a person sees, and the rectangles of the tabs, by name.
std::vector<std::pair<QString, QRect>> touchTargets(const QMainWindow &window)
{
    std::vector<std::pair<QString, QRect>> targets;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible() || !isControl(*widget) || widget->objectName().isEmpty() || isCovered(*widget, window))
            continue;
        // The visible rest of a control that is covered or scrolled away in part may touch its neighbours.
        if (isSeenWhole(*widget, window))
            targets.emplace_back(widget->objectName(), placeIn(window, *widget));
    }
    return targets;
}

int distance(const QRect &one, const QRect &other)
{
    const int across = std::max(one.left() - other.right(), other.left() - one.right()) - 1;
    const int down = std::max(one.top() - other.bottom(), other.top() - one.bottom()) - 1;
    return std::max(across, down);
}

QString nameOf(QWidget *widget)
{
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(widget);
    return interface ? interface->text(QAccessible::Name) : QString();
}

/// Width that the widget's style leaves for a button's caption.
int captionRoom(const QAbstractButton &button)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    option.rect = button.rect();
    const auto element = button.inherits("QCheckBox") ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents;
    return button.style()->subElementRect(element, &option, &button).width();
}

QString withoutMnemonic(QString caption)
{
    return caption.remove(u'&');
}

} // namespace

/// What can be measured of the window in each work area, on each kind of screen, in a light and a dark palette.
class LookTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase() { m_window.reset(); }
    void fits_data();
    void fits();
    void fitsUnderATitleBar();
    void fieldsStayReadable();
    void isLargeEnoughToTouch_data() { fits_data(); }
    void isLargeEnoughToTouch();
    void cutsNoCaption_data() { fits_data(); }
    void cutsNoCaption();
    void namesEveryControl_data() { fits_data(); }
    void namesEveryControl();
    void reachesEveryControlByTab_data() { fits_data(); }
    void reachesEveryControlByTab();
    void coveredControlsAreSkipped();

private:
    std::unique_ptr<BusyWindow> m_window;
};

void LookTest::init()
{
    if (QTest::currentDataTag())
        return; // the data row sets palette and size
    m_window.reset();
    QApplication::setPalette(lightPalette());
}

void LookTest::fits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("dark");
    QTest::addColumn<int>("area");
    // A whole screen, and one without the height of a title bar.
    for (const QSize size : {QSize(1024, 768), QSize(1024, 748), QSize(1024, 600), QSize(1024, 576), QSize(800, 600),
                             QSize(800, 576), QSize(768, 1366), QSize(1366, 768), QSize(1366, 744), QSize(1920, 1080)})
        for (const bool dark : {false, true})
            for (int area = 1; area <= allAreas; ++area)
                QTest::addRow("%dx%d, %s, area %d", size.width(), size.height(), dark ? "dark" : "light", area)
                    << size << dark << area;
}

/// Shows the window with the data row's size and palette. All areas of a size share one window.
#define SHOW_WINDOW()                                                                                                  \
    QFETCH(QSize, size);                                                                                               \
    QFETCH(bool, dark);                                                                                                \
    QFETCH(int, area);                                                                                                 \
    if (Colours::current().dark != dark)                                                                               \
        QApplication::setPalette(dark ? darkPalette() : lightPalette());                                               \
    if (area == 1 || !m_window || m_window->size() != size) {                                                          \
        m_window = std::make_unique<BusyWindow>();                                                                     \
        m_window->resize(size);                                                                                        \
        m_window->show();                                                                                              \
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));                                                         \
    }                                                                                                                  \
    BusyWindow &window = *m_window;                                                                                    \
    window.showWorkArea(area)

void LookTest::fits()
{
    SHOW_WINDOW();
    QCOMPARE(window.size(), size);
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible() || widget->objectName().isEmpty() || !widget->parentWidget() ||
            widget->objectName().startsWith(u"qt_"_s))
            continue;
        // A form scrolls vertically only: its controls lie within its width, and the form lies within the window.
        const QScrollArea *scroller = scrollerOf(*widget);
        const QWidget &around = scroller ? *scroller->widget() : static_cast<const QWidget &>(window);
        QVERIFY2(around.rect().contains(placeIn(around, *widget)), qPrintable(widget->objectName()));
        QVERIFY2(!scroller || around.width() <= scroller->viewport()->width(), qPrintable(widget->objectName()));
    }
    for (const auto *list : window.findChildren<QAbstractScrollArea *>())
        QVERIFY2(!list->horizontalScrollBar()->isVisible(), qPrintable(list->objectName()));
}

void LookTest::fitsUnderATitleBar()
{
    const QSize room(1024, 748);
    BusyWindow window;
    window.resize(room);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (int area = 1; area <= allAreas; ++area) {
        window.showWorkArea(area);
        QCOMPARE(window.size(), room);
        QVERIFY(window.minimumSizeHint().height() <= room.height());
        QVERIFY(window.minimumSizeHint().width() <= room.width());
    }
}

void LookTest::fieldsStayReadable()
{
    BusyWindow window;
    window.resize(1920, 1080);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.showWorkArea(WorkArea::Settings);
    for (const QWidget *field : std::initializer_list<QWidget *>{window.controls.Text2, window.controls.Combo9,
                                                                 window.controls.Command18, window.controls.List2})
        QVERIFY2(field->width() >= 55 * field->fontMetrics().averageCharWidth() &&
                     field->width() <= 72 * field->fontMetrics().averageCharWidth(),
                 qPrintable(field->objectName()));
}

void LookTest::isLargeEnoughToTouch()
{
    SHOW_WINDOW();
    const auto targets = touchTargets(window);
    QVERIFY(targets.size() >= 10);
    for (const auto &[name, place] : targets) {
        QVERIFY2(place.height() >= touch, qPrintable(u"%1 is %2 high"_s.arg(name).arg(place.height())));
        QVERIFY2(place.width() >= touch, qPrintable(u"%1 is %2 wide"_s.arg(name).arg(place.width())));
        for (const auto &[otherName, other] : targets)
            if (name < otherName && area != 8) // the login panel lies over others
                QVERIFY2(distance(place, other) >= controlGap,
                         qPrintable(u"%1 is %2 from %3"_s.arg(name).arg(distance(place, other)).arg(otherName)));
    }
    for (const TabStrip *strip : {window.controls.TabStrip1, window.controls.TabStrip2})
        for (int tab = 0; strip->isVisible() && tab < strip->count(); ++tab)
            QVERIFY(strip->tabRect(tab).height() >= touch);
    for (const RowList *list : {window.controls.LV, window.controls.LV2, window.controls.LV3})
        QVERIFY(!list->isVisible() || list->visualRect(list->rows().index(0, 0)).height() >= 32);
}

void LookTest::cutsNoCaption()
{
    SHOW_WINDOW();
    for (const auto *button : window.findChildren<QAbstractButton *>()) {
        if (!button->isVisible() || button->inherits("harrowby::QuickSaleButton"))
            continue;
        const int needed = button->fontMetrics().horizontalAdvance(withoutMnemonic(button->text()));
        QVERIFY2(captionRoom(*button) >= needed, qPrintable(button->objectName()));
    }
    for (const auto *label : window.findChildren<QLabel *>()) {
        if (!label->isVisible() || label->inherits("harrowby::ElidedLabel"))
            continue;
        const QRect needed = label->fontMetrics().boundingRect(
            QRect(0, 0, label->width(), 1000), label->wordWrap() ? static_cast<int>(Qt::TextWordWrap) : 0,
            label->text());
        QVERIFY2(needed.width() <= label->width(), qPrintable(label->text()));
        QVERIFY2(needed.height() <= label->height() + 2, qPrintable(label->text()));
    }
    for (const TabStrip *strip : {window.controls.TabStrip1, window.controls.TabStrip2}) {
        QFont bold = strip->font();
        bold.setBold(true); // as the selected tab shows it
        for (int tab = 0; tab < strip->count(); ++tab)
            QVERIFY(strip->tabRect(tab).width() - controlGap >=
                    QFontMetrics(bold).horizontalAdvance(strip->tabText(tab)));
    }
    for (const RowList *list : {window.controls.LV, window.controls.LV2, window.controls.LV3}) {
        if (!list->isVisible())
            continue;
        QVERIFY(list->header()->length() <= list->viewport()->width());
        for (int column = 0; column < list->rows().columnCount(); ++column)
            QVERIFY(list->columnWidth(column) >= list->header()->fontMetrics().horizontalAdvance(
                                                     list->rows().headerData(column, Qt::Horizontal).toString()));
    }
}

void LookTest::namesEveryControl()
{
    SHOW_WINDOW();
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible() || widget->objectName().isEmpty() || widget->objectName().startsWith(u"qt_"_s))
            continue;
        if (isControl(*widget) || (widget->focusPolicy() & Qt::TabFocus))
            QVERIFY2(!nameOf(widget).isEmpty(), qPrintable(widget->objectName()));
    }
}

void LookTest::reachesEveryControlByTab()
{
    SHOW_WINDOW();
    window.activateWindow();
    window.controls.TabStrip1->setFocus();
    QTRY_VERIFY(window.controls.TabStrip1->hasFocus());
    std::set<QWidget *> reached;
    while (reached.insert(window.focusWidget()).second)
        QVERIFY(focusNextUncovered(window, true));
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible() || !widget->isEnabled() || !isControl(*widget) || widget->objectName().isEmpty() ||
            isCovered(*widget, window) || widget->objectName().startsWith(u"qt_"_s))
            continue;
        // As the form scrolls, the panel above it covers other controls.
        if (area > 5 && somethingScrolls(window))
            continue;
        QVERIFY2(reached.contains(widget), qPrintable(widget->objectName()));
    }
    const size_t count = reached.size();
    reached.clear();
    while (reached.insert(window.focusWidget()).second)
        QVERIFY(focusNextUncovered(window, false));
    QVERIFY(reached.size() == count || (area > 5 && somethingScrolls(window)));
}

void LookTest::coveredControlsAreSkipped()
{
    BusyWindow window;
    window.resize(1024, 768);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.showWorkArea(WorkArea::EditStock);
    QVERIFY(window.controls.Command14->isVisible());
    QVERIFY(isCovered(*window.controls.Command14, window));
    QVERIFY(!isCovered(*window.controls.Command5, window));
    window.activateWindow();
    window.controls.TabStrip1->setFocus();
    std::set<QWidget *> reached;
    while (reached.insert(window.focusWidget()).second)
        QVERIFY(focusNextUncovered(window, true));
    QVERIFY(!reached.contains(window.controls.Command14));
    QVERIFY(reached.contains(window.controls.Combo5));
    QVERIFY(reached.contains(window.controls.LV));
}

HARROWBY_TEST(look_test, LookTest)
#include "look_test.moc"
