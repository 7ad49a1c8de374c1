// SPDX-License-Identifier: MIT
// What can be measured of the window's looks, for each work area, on each kind of screen, in a light and a dark
// palette.
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
#include <QFrame>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMessageBox>
#include <QPlainTextEdit>
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
        // What lies over a control, or what it is scrolled behind, may come as close to its rest as it likes.
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
    void contrasts_data();
    void contrasts();
    void keepsTheFixedColours();
    void followsThePalette();
    void totalIsTheLargestText();
    void purchaseIsTheMostProminentButton();
    void cardsAreLarge();
    void loginIsCentredAndBlocksNothing();
    void boxesAreLargeEnoughToTouch();
    void boxesHaveTheTillsIcons_data();
    void boxesHaveTheTillsIcons();
    void acceleratorsAreUnique();
    void coveredControlsAreSkipped();
    void startsWithItsFirstPanels();
    void hiddenPanelsAreDressedWhenShown();

private:
    std::unique_ptr<BusyWindow> m_window;
};

void LookTest::init()
{
    if (QTest::currentDataTag())
        return; // the row says it
    m_window.reset();
    QApplication::setPalette(lightPalette());
}

void LookTest::fits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("dark");
    QTest::addColumn<int>("area");
    // A screen as a whole, or less the title bar of a window.
    for (const QSize size : {QSize(1024, 768), QSize(1024, 748), QSize(1024, 600), QSize(1024, 576), QSize(800, 600),
                             QSize(800, 576), QSize(768, 1366), QSize(1366, 768), QSize(1366, 744), QSize(1920, 1080)})
        for (const bool dark : {false, true})
            for (int area = 1; area <= allAreas; ++area)
                QTest::addRow("%dx%d, %s, area %d", size.width(), size.height(), dark ? "dark" : "light", area)
                    << size << dark << area;
}

/// Shows the window as the data row says. One window serves all areas of a size, as in a shop.
#define SHOW_WINDOW(window)                                                                                            \
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
    SHOW_WINDOW(window);
    QCOMPARE(window.size(), size);
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible() || widget->objectName().isEmpty() || !widget->parentWidget() ||
            widget->objectName().startsWith(u"qt_"_s))
            continue;
        // What a form scrolls is reached up and down alone, and the form itself stays in the window.
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
    SHOW_WINDOW(window);
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
    SHOW_WINDOW(window);
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
    SHOW_WINDOW(window);
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible() || widget->objectName().isEmpty() || widget->objectName().startsWith(u"qt_"_s))
            continue;
        if (isControl(*widget) || (widget->focusPolicy() & Qt::TabFocus))
            QVERIFY2(!nameOf(widget).isEmpty(), qPrintable(widget->objectName()));
    }
}

void LookTest::reachesEveryControlByTab()
{
    SHOW_WINDOW(window);
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
        // What lies over a part of a form covers now this control of it, now that.
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

void LookTest::contrasts_data()
{
    QTest::addColumn<QPalette>("palette");
    QPalette tinted = lightPalette();
    tinted.setColor(QPalette::Window, QColor(214, 208, 200));
    tinted.setColor(QPalette::WindowText, QColor(70, 70, 70));
    QPalette black = darkPalette();
    black.setColor(QPalette::Window, Qt::black);
    black.setColor(QPalette::Base, Qt::black);
    QTest::newRow("light") << lightPalette();
    QTest::newRow("tinted") << tinted;
    QTest::newRow("dark") << darkPalette();
    QTest::newRow("black") << black;
}

void LookTest::contrasts()
{
    QFETCH(QPalette, palette);
    const Colours c = Colours::from(palette);
    for (const QColor &ground : {c.background, c.card, c.tile, c.field}) {
        QVERIFY(contrastRatio(c.text, ground) >= 7.0);
        QVERIFY(contrastRatio(c.muted, ground) >= 4.5);
        QVERIFY(contrastRatio(c.link, ground) >= 4.5);
    }
    for (const QColor &ground : {c.card, c.tile, c.selection}) {
        QVERIFY(contrastRatio(c.price, ground) >= 7.0);
        QVERIFY(contrastRatio(c.text, ground) >= 7.0);
    }
    QVERIFY(contrastRatio(c.accentText, c.background) >= 4.5);
    for (const QColor &ground : {c.accent, c.accentHover, c.accentPressed})
        QVERIFY(contrastRatio(c.onAccent, ground) >= 4.5);
    QVERIFY(contrastRatio(c.onDanger, c.danger) >= 4.5);
    QVERIFY(contrastRatio(c.onLevel, c.level) >= 4.5);
    QVERIFY(contrastRatio(c.onLowLevel, c.lowLevel) >= 4.5);
    QVERIFY(contrastRatio(c.enoughRow, c.field) >= 4.5);
    if (c.dark)
        QVERIFY(contrastRatio(c.lowRow, c.field) >= 4.5);
    QVERIFY(contrastRatio(c.fieldBorder, c.card) >= 3.0);
    QVERIFY(contrastRatio(c.accent, c.card) >= 3.0);
}

void LookTest::keepsTheFixedColours()
{
    const Colours c = Colours::from(lightPalette());
    QVERIFY(!c.dark);
    QCOMPARE(c.link, QColor(0, 0, 255));
    QCOMPARE(c.lowRow, QColor(255, 0, 0));
    QCOMPARE(c.enoughRow, QColor(0, 0, 0));
    QCOMPARE(c.lowLevel, QColor(255, 0, 0));
    QCOMPARE(c.level, QColor(255, 255, 255));
    QVERIFY(Colours::from(darkPalette()).dark);
    QCOMPARE(contrastRatio(Qt::black, Qt::white), 21.0);
    QCOMPARE(contrastRatio(Qt::red, Qt::red), 1.0);
}

void LookTest::followsThePalette()
{
    BusyWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto colourOf = [](const QLabel *label) { return label->palette().color(label->foregroundRole()); };
    QCOMPARE(colourOf(window.controls.Label6[9]), QColor(0, 0, 255));
    const QPoint corner(2, window.height() - 2);
    QCOMPARE(window.grab().toImage().pixelColor(corner), Colours::current().background);
    QApplication::setPalette(darkPalette());
    QCoreApplication::processEvents();
    QVERIFY(Colours::current().dark);
    QCOMPARE(colourOf(window.controls.Label6[9]), Colours::current().link);
    QCOMPARE(window.grab().toImage().pixelColor(corner), Colours::current().background);
}

void LookTest::totalIsTheLargestText()
{
    BusyWindow window;
    window.resize(1024, 768);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    const auto height = [](const QWidget *widget) { return QFontMetrics(widget->font()).height(); };
    for (const QWidget *widget : window.findChildren<QWidget *>())
        if (widget != window.controls.Label5)
            QVERIFY2(height(widget) < height(window.controls.Label5), qPrintable(widget->objectName()));
    window.controls.Label5->grab();
    QCOMPARE(window.controls.Label5->toolTip(), QString()); // a million still fits
}

void LookTest::purchaseIsTheMostProminentButton()
{
    BusyWindow window;
    window.resize(1024, 768);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QPushButton *purchase = window.controls.Command14;
    QVERIFY(purchase->height() >= 64);
    for (const auto *button : window.findChildren<QPushButton *>()) {
        if (button == purchase || !button->isVisible())
            continue;
        QVERIFY2(button->width() * button->height() < purchase->width() * purchase->height(),
                 qPrintable(button->objectName()));
    }
    QCOMPARE(window.controls.Command14->grab().toImage().pixelColor(30, 10), Colours::current().accent);
}

void LookTest::cardsAreLarge()
{
    BusyWindow window;
    window.resize(1024, 768);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const QuickSaleButton *card : window.controls.Command1) {
        QVERIFY(card->width() >= 190);
        QVERIFY(card->height() >= 130);
    }
}

void LookTest::loginIsCentredAndBlocksNothing()
{
    BusyWindow window;
    window.show();
    window.showWorkArea(8);
    for (const QSize size : {QSize(1024, 768), QSize(1600, 900)}) {
        window.resize(size);
        QCoreApplication::processEvents();
        const QPoint off = window.controls.Frame12->geometry().center() - window.rect().center();
        QVERIFY(off.manhattanLength() <= 2);
    }
    QVERIFY(!window.controls.Frame12->isModal());
    QVERIFY(!window.controls.Frame12->isWindow());
    QVERIFY(window.controls.Command14->isEnabled());
    QVERIFY(window.controls.TabStrip1->isEnabled());
    QCOMPARE(window.controls.Text4->echoMode(), QLineEdit::Password);
}

void LookTest::boxesAreLargeEnoughToTouch()
{
    BusyWindow window;
    window.show();
    QMessageBox question(QMessageBox::Question, {}, u"Clear Cart?"_s, QMessageBox::Yes | QMessageBox::No, &window);
    question.show();
    QInputDialog input(&window);
    input.show();
    for (const QDialog *box : std::initializer_list<QDialog *>{&question, &input}) {
        const auto buttons = box->findChildren<QPushButton *>();
        QCOMPARE(buttons.size(), 2);
        for (const QPushButton *button : buttons)
            QVERIFY(button->height() >= touch);
    }
}

void LookTest::boxesHaveTheTillsIcons_data()
{
    QTest::addColumn<bool>("dark");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::addColumn<QColor>("colour");
    for (const bool dark : {false, true}) {
        const Colours colours = Colours::from(dark ? darkPalette() : lightPalette());
        const QByteArray shade = dark ? "dark" : "light";
        QTest::newRow(shade + " question") << dark << QMessageBox::Question << colours.accent;
        QTest::newRow(shade + " information") << dark << QMessageBox::Information << colours.accent;
        QTest::newRow(shade + " warning") << dark << QMessageBox::Warning << QColor(dark ? 0xffc14d : 0xb86e00);
        QTest::newRow(shade + " error") << dark << QMessageBox::Critical << colours.danger;
    }
}

void LookTest::boxesHaveTheTillsIcons()
{
    QFETCH(const bool, dark);
    QFETCH(const QMessageBox::Icon, icon);
    QFETCH(const QColor, colour);
    BusyWindow window;
    window.show();
    QMessageBox box(icon, {}, u"Clear Cart?"_s, QMessageBox::Ok, &window);
    box.show();
    QApplication::setPalette(dark ? darkPalette() : lightPalette()); // also while it is open
    QCoreApplication::processEvents();
    const QImage drawing = box.iconPixmap().toImage();
    QCOMPARE(drawing.size(), QSize(48, 48));
    int own = 0;
    for (int y = 0; y < drawing.height(); ++y)
        for (int x = 0; x < drawing.width(); ++x)
            own += drawing.pixelColor(x, y) == colour ? 1 : 0;
    QVERIFY2(own > 100, qPrintable(QString::number(own)));
    QVERIFY(contrastRatio(colour, Colours::current().card) >= 3.0);
}

void LookTest::acceleratorsAreUnique()
{
    BusyWindow window;
    std::set<QString> keys;
    for (const auto *button : window.findChildren<QAbstractButton *>()) {
        const QString key = button->shortcut().toString();
        QVERIFY2(key.isEmpty() || keys.insert(key).second, qPrintable(button->objectName()));
    }
    const std::set<QString> expected{u"Alt+C"_s, u"Alt+L"_s, u"Alt+P"_s, u"Alt+R"_s, u"Alt+S"_s};
    QVERIFY(keys == expected);
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

void LookTest::startsWithItsFirstPanels()
{
    QMainWindow window;
    const Controls c(window);
    QCOMPARE(window.windowTitle(), u"Sales Inventory"_s);
    for (const QFrame *frame : {c.Frame1, c.Frame2, c.Frame4})
        QVERIFY2(!frame->isHidden(), qPrintable(frame->objectName()));
    for (const QFrame *frame :
         {c.Frame3, c.Frame5, c.Frame7, c.Frame8, c.Frame9, c.Frame10, c.Frame11, c.Frame12, c.Frame13})
        QVERIFY2(frame->isHidden(), qPrintable(frame->objectName()));
    QStringList tabs;
    for (int tab = 0; tab < c.TabStrip1->count(); ++tab)
        tabs += c.TabStrip1->tabText(tab);
    QCOMPARE(tabs, QStringList(
                       {u"Quick Sales"_s, u"Custom Sales"_s, u"Add/Edit Stock"_s, u"Reorder Stock"_s, u"Settings"_s}));
    QCOMPARE(c.TabStrip2->tabText(0), u"Cart"_s);
    QCOMPARE(c.TabStrip2->tabText(1), u"Sales Activity"_s);
    QCOMPARE(c.Combo4->entryText(), u"0"_s);
    QCOMPARE(c.Label15->text(), u"Nil"_s);
    QCOMPARE(c.StatusBar1_2->text(), QString());
    QCOMPARE(c.Label6[7]->text(), u"Click to See Reorder List"_s);
    QCOMPARE(c.Command1[8]->objectName(), u"Command1_8"_s);
}

void LookTest::hiddenPanelsAreDressedWhenShown()
{
    BusyWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    QPushButton *button = window.controls.Command17;
    const QLabel *level = window.controls.Label12;
    QVERIFY(!button->testAttribute(Qt::WA_WState_Polished));
    QApplication::setPalette(darkPalette());
    window.showWorkArea(WorkArea::ReorderStock);
    QVERIFY(button->testAttribute(Qt::WA_WState_Polished));
    QVERIFY(button->height() >= touch);
    QVERIFY(button->font().bold());
    QCOMPARE(button->grab().toImage().pixelColor(20, 8), Colours::current().accent);
    QCOMPARE(level->palette().color(level->foregroundRole()), Colours::current().price);
    window.showWorkArea(WorkArea::QuickSales);
    window.showWorkArea(WorkArea::ReorderStock);
    QCOMPARE(button->grab().toImage().pixelColor(20, 8), Colours::current().accent);
}

HARROWBY_TEST(look_test, LookTest)
#include "look_test.moc"
