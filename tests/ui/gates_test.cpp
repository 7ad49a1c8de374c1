// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

/// A control that is not for everybody.
struct GatedControl
{
    const char *name;
    const char *right;            ///< as ShopFile::addUser() calls it; empty where a login is enough
    bool tellsOnly = false;       ///< without a login: another text, and the focus stays
    bool sendsAway = true;        ///< without the right: the tab of the quick sales is chosen
    const char *answer = nullptr; ///< the first box when the press is allowed
    int style = box::Exclamation;
    int tab = 0; ///< of a tab strip
};

const char *const noReport =
    "Error loading report, Please restart Harrowby Server or the System!\r\nIf this problem persist, please run a "
    "Scandisk and replace to replace missing files or reinstall Harrowby. See https://harrowby.example/faq";

/// All gated controls but the search, which asks for a text.
const std::initializer_list<GatedControl> gatedControls{
    {.name = "Command1_0",
     .right = "",
     .answer = "Item is empty!\r\nYou can add a new Item from Add/Edit Stock",
     .style = box::Information},
    {.name = "CmdNext", .right = ""},
    {.name = "Command12", .right = ""},
    {.name = "Command13", .right = "", .answer = "Cart is Empty!"},
    {.name = "Command14", .right = "", .answer = "Cart is Empty!"},
    {.name = "Command31", .right = ""},
    {.name = "LV3", .right = "", .tellsOnly = true},
    {.name = "Command15", .right = "Sales", .sendsAway = false, .answer = "You have selected an item!"},
    {.name = "Command16", .right = "Reorder", .sendsAway = false, .answer = "Invalid Category Name Selection!"},
    {.name = "Command17", .right = "Reorder", .answer = "New Stock Number is invalid or less than 1!"},
    {.name = "Command23", .right = "Undo", .answer = "Nothing to Undo!"},
    {.name = "Command25", .right = "Undo", .answer = "Nothing to Undo!"},
    {.name = "Command4", .right = "Delete", .answer = "Nothing to Delete!"},
    {.name = "Command18", .right = "Settings"},
    {.name = "Command19",
     .right = "Report",
     .tellsOnly = true,
     .sendsAway = false,
     .answer = noReport,
     .style = box::Critical},
    {.name = "TabStrip2", .right = "Settings", .tellsOnly = true, .sendsAway = false, .tab = SidePanel::SalesActivity},
    {.name = "TabStrip1", .right = "", .tab = WorkArea::QuickSales},
    {.name = "TabStrip1", .right = "Sales", .tab = WorkArea::CustomSales},
    {.name = "TabStrip1", .right = "Reorder", .tab = WorkArea::EditStock},
    {.name = "TabStrip1", .right = "Reorder", .tab = WorkArea::ReorderStock},
    {.name = "TabStrip1", .right = "Settings", .tab = WorkArea::Settings},
};

void press(const GatedControl &control, Counter &counter)
{
    if (control.tab != 0) {
        counter.chooseTab(control.name, control.tab);
    } else if (auto *list = qobject_cast<RowList *>(counter.find(control.name))) {
        Q_EMIT list->rowOpened(0);
    } else {
        counter.find(control.name)->setEnabled(true); // an empty shop has no next page
        counter.click(control.name);
    }
}

QString rightOf(const GatedControl &control)
{
    return QString::fromLatin1(control.right);
}

} // namespace

Q_DECLARE_METATYPE(GatedControl)

/// Who gets past the gate of which control, and what the others are told.
class GatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutLogin_data()
    {
        controlsWhere([](const GatedControl &) { return true; });
    }
    void withoutLogin();
    void searchAsksForTheLoginToo();
    void withEveryOtherRight_data()
    {
        controlsWhere([](const GatedControl &control) { return *control.right != '\0'; });
    }
    void withEveryOtherRight();
    void withTheRightAlone_data() { withoutLogin_data(); }
    void withTheRightAlone();

private:
    static void controlsWhere(bool (*isMeant)(const GatedControl &));
};

void GatesTest::controlsWhere(bool (*isMeant)(const GatedControl &))
{
    QTest::addColumn<GatedControl>("control");
    for (const GatedControl &control : gatedControls) {
        if (isMeant(control))
            QTest::addRow("%s %d", control.name, control.tab) << control;
    }
}

void GatesTest::withoutLogin()
{
    QFETCH(GatedControl, control);
    Counter counter;
    counter.open();
    counter.find("Text4")->setFocus();
    counter.boxes.expect(control.tellsOnly ? u"You must login first!"_s : u"You must Login in First!"_s,
                         box::Exclamation);
    press(control, counter);
    QVERIFY(counter.boxes.isDone());
    QCOMPARE(counter.hasFocus("Text3"), !control.tellsOnly);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QCOMPARE(counter.selectedTab("TabStrip2"), SidePanel::Cart);
}

void GatesTest::searchAsksForTheLoginToo()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command8");
    QVERIFY(counter.hasFocus("Text3"));
    counter.logIn();
    counter.boxes.expectInput(u"Please Enter Search item name or ID?"_s, u"Searching for Stock Item"_s, QString(), {});
    counter.click("Command8");
}

void GatesTest::withEveryOtherRight()
{
    QFETCH(GatedControl, control);
    const QString right = rightOf(control);
    Counter counter;
    QStringList others{u"Sales"_s, u"Report"_s, u"Undo"_s, u"Delete"_s, u"Settings"_s, u"Reorder"_s};
    others.removeAll(right);
    counter.file.addUser(u"ANN"_s, u"PW"_s, others);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    const int before = right == u"Settings"_s ? WorkArea::CustomSales : WorkArea::Settings;
    counter.chooseTab("TabStrip1", before);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    press(control, counter);
    QVERIFY(counter.boxes.isDone());
    QCOMPARE(counter.selectedTab("TabStrip1"), control.sendsAway ? WorkArea::QuickSales : before);
    QCOMPARE(counter.selectedTab("TabStrip2"), SidePanel::Cart);
}

void GatesTest::withTheRightAlone()
{
    QFETCH(GatedControl, control);
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {rightOf(control)});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    if (control.answer != nullptr)
        counter.boxes.expect(QString::fromLatin1(control.answer), control.style);
    press(control, counter);
    QVERIFY(counter.boxes.isDone());
    if (control.tab != 0)
        QCOMPARE(counter.selectedTab(control.name), control.tab);
}

HARROWBY_TEST(gates_test, GatesTest)
#include "gates_test.moc"
