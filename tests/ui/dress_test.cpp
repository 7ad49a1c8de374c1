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

#include <QApplication>
#include <QFrame>
#include <QHash>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <algorithm>
#include <memory>
#include <set>

using namespace Qt::StringLiterals;
using namespace harrowby;
using harrowby::test::BusyWindow;
using harrowby::test::darkPalette;
using harrowby::test::lightPalette;

namespace {

constexpr int thumb = 44;

/// What cannot be read. A level and a quick-sale button paint theirs themselves.
QStringList unreadableIn(BusyWindow &window)
{
    return harrowby::test::unreadableTexts(window, [](const QWidget &widget) {
        return qobject_cast<const LevelLabel *>(&widget) != nullptr ||
               qobject_cast<const QuickSaleButton *>(&widget) != nullptr;
    });
}

} // namespace

/// Colours, sizes and signs, in a light and a dark palette.
class DressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase() { m_window.reset(); }
    void contrasts_data();
    void contrasts();
    void everyTextCanBeRead_data();
    void everyTextCanBeRead();
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
    void startsWithItsFirstPanels();
    void hiddenPanelsAreDressedWhenShown();

private:
    std::unique_ptr<BusyWindow> m_window;
};

void DressTest::init()
{
    if (QTest::currentDataTag())
        return; // the data row sets the palette
    m_window.reset();
    QApplication::setPalette(lightPalette());
}

void DressTest::contrasts_data()
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

void DressTest::contrasts()
{
    QFETCH(QPalette, palette);
    const Colours c = Colours::from(palette);
    for (const QColor &ground : {c.background, c.card, c.tile, c.field}) {
        QVERIFY(contrastRatio(c.text, ground) >= contrast::figure);
        QVERIFY(contrastRatio(c.muted, ground) >= contrast::muted);
        QVERIFY(contrastRatio(c.link, ground) >= (c.dark ? contrast::muted : contrast::text));
        QVERIFY(contrastRatio(c.fieldBorder, ground) >= contrast::edge);
    }
    for (const QColor &ground : {c.card, c.tile, c.selection}) {
        QVERIFY(contrastRatio(c.price, ground) >= contrast::figure);
        QVERIFY(contrastRatio(c.text, ground) >= contrast::figure);
    }
    for (const QColor &ground : {c.chosenRow, c.stripe})
        QVERIFY(contrastRatio(c.text, ground) >= contrast::figure);
    QVERIFY(contrastRatio(c.accentText, c.background) >= contrast::text);
    for (const QColor &ground : {c.accent, c.accentHover, c.accentPressed})
        QVERIFY(contrastRatio(c.onAccent, ground) >= contrast::text);
    QVERIFY(contrastRatio(c.onDanger, c.danger) >= contrast::text);
    QVERIFY(contrastRatio(c.onLevel, c.level) >= contrast::text);
    QVERIFY(contrastRatio(c.onLowLevel, c.lowLevel) >= contrast::text);
    for (const QColor &ground : {c.field, c.selection}) {
        QVERIFY(contrastRatio(c.enoughRow, ground) >= contrast::text);
        if (c.dark)
            QVERIFY(contrastRatio(c.lowRow, ground) >= contrast::text);
    }
    QVERIFY(contrastRatio(c.accent, c.card) >= contrast::edge);
}

void DressTest::everyTextCanBeRead_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << lightPalette();
    QTest::newRow("dark") << darkPalette();
}

/// In the colours that are painted.
void DressTest::everyTextCanBeRead()
{
    QFETCH(const QPalette, palette);
    QApplication::setPalette(palette);
    BusyWindow window;
    window.resize(1280, 860);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const int area : {1, 2, 3, 4, 5, 6, 7, 8}) {
        window.showWorkArea(area);
        for (const bool enabled : {true, false}) {
            window.centralWidget()->setEnabled(enabled);
            const QStringList unreadable = unreadableIn(window);
            QVERIFY2(unreadable.isEmpty(), qPrintable(unreadable.join(u'\n')));
        }
        window.centralWidget()->setEnabled(true);
    }
}

void DressTest::keepsTheFixedColours()
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

void DressTest::followsThePalette()
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

void DressTest::totalIsTheLargestText()
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

void DressTest::purchaseIsTheMostProminentButton()
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

void DressTest::cardsAreLarge()
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

void DressTest::loginIsCentredAndBlocksNothing()
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

void DressTest::boxesAreLargeEnoughToTouch()
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
            QVERIFY(button->height() >= thumb);
    }
}

void DressTest::boxesHaveTheTillsIcons_data()
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

void DressTest::boxesHaveTheTillsIcons()
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
    QVERIFY(contrastRatio(colour, Colours::current().card) >= contrast::edge);
}

void DressTest::acceleratorsAreUnique()
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

void DressTest::startsWithItsFirstPanels()
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

void DressTest::hiddenPanelsAreDressedWhenShown()
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
    QVERIFY(button->height() >= thumb);
    QVERIFY(button->font().bold());
    QCOMPARE(button->grab().toImage().pixelColor(20, 8), Colours::current().accent);
    QCOMPARE(level->palette().color(level->foregroundRole()), Colours::current().price);
    window.showWorkArea(WorkArea::QuickSales);
    window.showWorkArea(WorkArea::ReorderStock);
    QCOMPARE(button->grab().toImage().pixelColor(20, 8), Colours::current().accent);
}

HARROWBY_TEST(dress_test, DressTest)
#include "dress_test.moc"
