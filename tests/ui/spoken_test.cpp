// SPDX-License-Identifier: MIT
#include "spoken/spoken.h"
#include "ui/controls.h"
#include "ui/widgets/name_list.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include "tests/program/test_program.h"

#include <QAccessible>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMap>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace harrowby;

namespace {

QAccessibleInterface *readerOf(QObject *object)
{
    return QAccessible::queryAccessibleInterface(object);
}

QString spokenName(QObject *object)
{
    return readerOf(object)->text(QAccessible::Name);
}

void press(QAccessibleInterface *part)
{
    part->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
}

QStringList childNames(QAccessibleInterface *parent)
{
    QStringList names;
    for (int i = 0; i < parent->childCount(); ++i)
        names << parent->child(i)->text(QAccessible::Name);
    return names;
}

QList<int> childrenThat(QAccessibleInterface *parent, bool (*holds)(const QAccessible::State &))
{
    QList<int> found;
    for (int i = 0; i < parent->childCount(); ++i) {
        if (holds(parent->child(i)->state()))
            found << i;
    }
    return found;
}

bool selected(const QAccessible::State &state)
{
    return state.selected;
}

bool focused(const QAccessible::State &state)
{
    return state.focused;
}

/// A window with the widget and another one that can have the focus.
struct Place
{
    explicit Place(QWidget *widget) : other(new QLineEdit(&window))
    {
        auto *rows = new QVBoxLayout(&window);
        rows->addWidget(other);
        rows->addWidget(widget);
    }
    bool show(QWidget *withFocus)
    {
        window.show();
        window.activateWindow();
        withFocus->setFocus();
        return QTest::qWaitForWindowActive(&window) && QTest::qWaitFor([=] { return withFocus->hasFocus(); });
    }

    QWidget window;
    QLineEdit *other;
};

} // namespace

/// What a screen reader is told of the widgets of the counter and of windows that are marked.
class SpokenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tabStrip();
    void tabStripIsWalkedByArrows();
    void rowList();
    void rowListChanges();
    void nameList();
    void pickList();
    void pickedByReader();
    void windowsOfOthersAreLeftAlone();
    void markedWindow();
    void combosThatTakeNoText();
    void boxes();
    void buttonBoxHandsTheFocusOn();
    void cardFollowsItsCaption();
    void outcome();
    void everyPartOfTheCounterIsNamed();
};

void SpokenTest::tabStrip()
{
    auto *strip = new TabStrip;
    Place place(strip);
    strip->setAccessibleName(u"Work areas"_s);
    for (const QString &caption : {u"One"_s, u"Two"_s, u"Three"_s})
        strip->addTab(caption);
    strip->setTabEnabled(2, false);
    QAccessibleInterface *reader = readerOf(strip);
    QCOMPARE(reader->role(), QAccessible::PageTabList);
    QCOMPARE(reader->text(QAccessible::Name), u"Work areas"_s);
    QCOMPARE(childNames(reader), (QStringList{u"One"_s, u"Two"_s, u"Three"_s}));
    QCOMPARE(childrenThat(reader, selected), QList<int>{0});

    QVERIFY(place.show(place.other));
    QCOMPARE(childrenThat(reader, focused), QList<int>());
    QVERIFY(!reader->state().focused);
    strip->setFocus();
    QVERIFY(reader->state().focused);
    QCOMPARE(childrenThat(reader, focused), QList<int>{0});
    strip->selectTab(2);
    QCOMPARE(childrenThat(reader, selected), QList<int>{1});
    QCOMPARE(childrenThat(reader, focused), QList<int>{1});
    QCOMPARE(reader->focusChild(), reader->child(1));
    QCOMPARE(reader->indexOfChild(reader->child(1)), 1);
    QVERIFY(reader->child(2)->state().disabled);
    press(reader->child(2));
    QCOMPARE(strip->selectedTab(), 2);
    QVERIFY(reader->child(3) == nullptr);
}

void SpokenTest::tabStripIsWalkedByArrows()
{
    TabStrip strip;
    for (const QString &caption : {u"One"_s, u"Two"_s, u"Three"_s})
        strip.addTab(caption);
    strip.setTabEnabled(1, false);
    const QSignalSpy changes(&strip, &QTabBar::currentChanged);
    const QSignalSpy clicks(&strip, &TabStrip::tabClicked);
    QTest::keyClick(&strip, Qt::Key_Right);
    QCOMPARE(strip.selectedTab(), 3);
    QCOMPARE(changes.size(), 1); // one change, so that it is announced once
    QTest::keyClick(&strip, Qt::Key_Right);
    QCOMPARE(strip.selectedTab(), 3);
    QTest::keyClick(&strip, Qt::Key_Left);
    QCOMPARE(strip.selectedTab(), 1);
    QCOMPARE(clicks.size(), 2);
    strip.setLayoutDirection(Qt::RightToLeft);
    QTest::keyClick(&strip, Qt::Key_Left);
    QCOMPARE(strip.selectedTab(), 3);
}

void SpokenTest::rowList()
{
    auto *list = new RowList({u"Item"_s, u"Qty"_s});
    Place place(list);
    list->setAccessibleName(u"Cart"_s);
    list->rows().appendRow({u"TEA"_s, u"2"_s});
    list->rows().appendRow({u"JAM"_s, u"1"_s});
    list->selectRow(1);
    QAccessibleInterface *reader = readerOf(list);
    QCOMPARE(reader->role(), QAccessible::Table);
    QCOMPARE(reader->text(QAccessible::Name), u"Cart"_s);
    QCOMPARE(childNames(reader), (QStringList{u"Item"_s, u"Qty"_s, u"TEA"_s, u"2"_s, u"JAM"_s, u"1"_s}));
    QCOMPARE(reader->child(0)->role(), QAccessible::ColumnHeader);
    QCOMPARE(reader->child(2)->role(), QAccessible::Cell);
    QAccessibleTableInterface *table = reader->tableInterface();
    QCOMPARE(table->rowCount(), 2);
    QCOMPARE(table->columnDescription(1), u"Qty"_s);
    QCOMPARE(table->cellAt(1, 0), reader->child(4));
    QCOMPARE(table->selectedRows(), QList<int>{1});
    QVERIFY(table->cellAt(2, 0) == nullptr && reader->child(6) == nullptr && reader->child(-1) == nullptr);

    QVERIFY(place.show(place.other));
    QCOMPARE(childrenThat(reader, selected), (QList<int>{4, 5}));
    QCOMPARE(childrenThat(reader, focused), QList<int>()); // the current row, in a list without the focus
    QVERIFY(!reader->state().focused);
    list->setFocus();
    QVERIFY(reader->state().focused);
    QCOMPARE(childrenThat(reader, focused), QList<int>{4});

    const QSignalSpy chosen(list, &RowList::rowChosen);
    press(reader->child(3));
    QCOMPARE(list->selectedRow(), 0);
    QCOMPARE(chosen.size(), 1);
    reader->child(4)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    QCOMPARE(list->selectedRow(), 1);
    QCOMPARE(chosen.size(), 1);
    QVERIFY(table->selectRow(0));
    QCOMPARE(list->selectedRow(), 0);
    list->setEnabled(false);
    press(reader->child(5));
    QVERIFY(!table->selectRow(1));
    QCOMPARE(list->selectedRow(), 0);
}

void SpokenTest::rowListChanges()
{
    RowList list({u"Item"_s, u"Qty"_s});
    list.rows().appendRow({u"TEA"_s, u"2"_s});
    QAccessibleInterface *reader = readerOf(&list);
    QAccessibleInterface *quantity = reader->child(3);
    const QSignalSpy changed(&list.rows(), &QAbstractItemModel::dataChanged);
    list.rows().setText(0, 1, u"3"_s);
    QCOMPARE(quantity->text(QAccessible::Name), u"3"_s);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex().column(), 1); // the quantity alone
    list.rows().setText(0, 1, u"3"_s);
    QCOMPARE(changed.size(), 1);

    list.rows().appendRow({u"JAM"_s, u"1"_s});
    QCOMPARE(reader->child(3), quantity);
    QCOMPARE(reader->childCount(), 6);
    list.rows().clear();
    QCOMPARE(reader->childCount(), 2);
    QVERIFY(!quantity->isValid());
    QVERIFY(quantity->state().invalid);
    QCOMPARE(quantity->text(QAccessible::Name), QString());
    press(quantity);
    QAccessibleTableModelChangeEvent reset(&list, QAccessibleTableModelChangeEvent::ModelReset);
    reader->tableInterface()->modelChange(&reset);
    list.rows().appendRow({u"BUN"_s, u"7"_s});
    QCOMPARE(reader->child(3)->text(QAccessible::Name), u"7"_s);
}

void SpokenTest::nameList()
{
    NameList list;
    list.addItems({u"DRINKS"_s, u"BREAD"_s});
    QAccessibleInterface *reader = readerOf(&list);
    QCOMPARE(reader->role(), QAccessible::List);
    QCOMPARE(childNames(reader), (QStringList{u"DRINKS"_s, u"BREAD"_s}));
    QCOMPARE(reader->child(1)->role(), QAccessible::ListItem);
    press(reader->child(1));
    QCOMPARE(list.currentRow(), 1);
    QCOMPARE(childrenThat(reader, selected), QList<int>{1});
    QCOMPARE(childrenThat(reader, focused), QList<int>());
}

void SpokenTest::pickList()
{
    PickList list;
    list.setAccessibleName(u"Category"_s);
    list.addEntry(u"DRINKS"_s);
    list.addEntry(u"BREAD"_s);
    list.setEntryText(u"DRI"_s);
    QAccessibleInterface *reader = readerOf(&list);
    QCOMPARE(reader->role(), QAccessible::ComboBox);
    QCOMPARE(reader->text(QAccessible::Name), u"Category"_s);
    QCOMPARE(reader->text(QAccessible::Value), u"DRI"_s);
    QVERIFY(reader->state().editable && reader->state().expandable && !reader->state().expanded);
    QCOMPARE(reader->childCount(), 2);
    QCOMPARE(childNames(reader->child(0)), (QStringList{u"DRINKS"_s, u"BREAD"_s}));
    QCOMPARE(reader->child(0)->text(QAccessible::Name), u"Category"_s);
    QCOMPARE(reader->child(0)->parent(), reader);
    QCOMPARE(reader->indexOfChild(reader->child(0)), 0);
    QCOMPARE(reader->indexOfChild(reader->child(1)), 1);
    QCOMPARE(reader->child(1)->text(QAccessible::Value), u"DRI"_s);
    QVERIFY(reader->child(2) == nullptr);

    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    press(reader);
    QVERIFY(reader->state().expanded);
    press(reader);
    QVERIFY(!reader->state().expanded);
    list.setEnabled(false);
    press(reader);
    QVERIFY(!reader->state().expanded);
}

void SpokenTest::pickedByReader()
{
    PickList list;
    list.addEntry(u"DRINKS"_s);
    list.addEntry(u"BREAD"_s);
    const QSignalSpy changed(&list, &PickList::entryTextChanged);
    const QSignalSpy picked(&list, &PickList::picked);
    const QSignalSpy again(&list, &PickList::pickedAgain);
    QAccessibleInterface *entries = readerOf(&list)->child(0);
    press(entries->child(1));
    QCOMPARE(list.entryText(), u"BREAD"_s);
    QCOMPARE(list.selectedEntry(), 1);
    QCOMPARE(picked.size(), 1);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(again.size(), 0);
    press(entries->child(1));
    QCOMPARE(picked.size(), 2);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(again.size(), 1);
    list.setEnabled(false);
    press(entries->child(0));
    QCOMPARE(picked.size(), 2);
}

void SpokenTest::windowsOfOthersAreLeftAlone()
{
    TabStrip installs;
    QTabBar bar;
    bar.setAccessibleName(u"Theirs"_s);
    bar.addTab(u"One"_s);
    QCOMPARE(spokenName(&bar), u"One"_s); // as Qt has it
}

void SpokenTest::markedWindow()
{
    QWidget window;
    speakTruly(&window);
    auto *bar = new QTabBar(&window);
    bar->setAccessibleName(u"Pages"_s);
    bar->addTab(u"&Users && rights"_s);
    bar->addTab(u"Re&ceipt"_s);
    QAccessibleInterface *reader = readerOf(bar);
    QCOMPARE(reader->text(QAccessible::Name), u"Pages"_s);
    QCOMPARE(childNames(reader), (QStringList{u"Users & rights"_s, u"Receipt"_s}));
    QCOMPARE(reader->child(1)->text(QAccessible::Accelerator), u"Alt+C"_s);
    press(reader->child(1));
    QCOMPARE(bar->currentIndex(), 1);
    bar->removeTab(1);
    QCOMPARE(reader->childCount(), 1);

    auto *list = new QListWidget(&window);
    list->addItems({u"ANNA"_s, u"BERT"_s});
    const QSignalSpy clicked(list, &QListWidget::itemClicked);
    press(readerOf(list)->child(1));
    QCOMPARE(list->currentRow(), 1);
    QCOMPARE(clicked.size(), 1);
}

void SpokenTest::combosThatTakeNoText()
{
    QWidget window;
    speakTruly(&window);
    auto *alone = new QComboBox(&window);
    alone->setAccessibleName(u"Type"_s);
    QCOMPARE(spokenName(alone), u"Type"_s);
    alone->addItems({u"STAFF"_s, u"MANAGER"_s});
    QCOMPARE(spokenName(alone), u"Type: STAFF"_s);
    const QSignalSpy activated(alone, &QComboBox::activated);
    press(readerOf(alone)->child(0)->child(1));
    QCOMPARE(spokenName(alone), u"Type: MANAGER"_s);
    QCOMPARE(activated.size(), 1);

    auto *labelled = new QComboBox(&window);
    labelled->addItem(u"Today"_s);
    labelled->setAccessibleName(u"Period"_s);
    QLabel label(u"&Period"_s, &window);
    label.setBuddy(labelled);
    QCOMPARE(spokenName(labelled), u"Today"_s); // its label says what it is for
    const auto labels = readerOf(labelled)->relations(QAccessible::Label);
    QCOMPARE(labels.size(), 1);
    QCOMPARE(labels.first().first->text(QAccessible::Name), u"Period"_s);
}

void SpokenTest::boxes()
{
    QWidget window;
    speakTruly(&window);
    const std::pair<QMessageBox::Icon, QString> kinds[] = {{QMessageBox::Question, u"Question"_s},
                                                           {QMessageBox::Warning, u"Warning"_s},
                                                           {QMessageBox::Critical, u"Error"_s},
                                                           {QMessageBox::Information, u"Information"_s},
                                                           {QMessageBox::NoIcon, u"Information"_s}};
    for (const auto &[icon, name] : kinds) {
        QMessageBox box(&window);
        box.setIcon(icon);
        QCOMPARE(spokenName(&box), name);
        QCOMPARE(readerOf(&box)->role(), QAccessible::AlertMessage);
        box.setWindowTitle(u"Store"_s);
        QCOMPARE(spokenName(&box), u"Store"_s);
    }
    QInputDialog input(&window);
    input.setLabelText(u"Enter new price?"_s);
    QCOMPARE(spokenName(&input), u"Enter new price?"_s);
    QCOMPARE(readerOf(&input)->role(), QAccessible::Dialog);
}

void SpokenTest::buttonBoxHandsTheFocusOn()
{
    QWidget window;
    speakTruly(&window);
    auto *box = new QDialogButtonBox(QDialogButtonBox::Yes | QDialogButtonBox::No, &window);
    QPushButton *yes = box->button(QDialogButtonBox::Yes);
    box->setFocusProxy(yes);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    yes->setFocus();
    QVERIFY(readerOf(yes)->state().focused);
    QVERIFY(!readerOf(box)->state().focused);
}

void SpokenTest::cardFollowsItsCaption()
{
    QuickSaleButton card;
    QAccessibleInterface *reader = readerOf(&card);
    QCOMPARE(reader->text(QAccessible::Name), u"(empty)"_s);
    card.setText(u"12\r\nTEA\r\n2.50"_s);
    QCOMPARE(reader->text(QAccessible::Name), u"TEA, 2.50"_s);
    QVERIFY(card.accessibleName().isEmpty()); // would be announced in addition to the label's text
    const QSignalSpy clicked(&card, &QAbstractButton::clicked);
    press(reader);
    QCOMPARE(clicked.size(), 1);
    card.setEnabled(false);
    QCOMPARE(reader->actionInterface()->actionNames(), QStringList());
    card.setDown(true);
    QVERIFY(reader->state().pressed);
}

void SpokenTest::outcome()
{
    QLabel label;
    reportOutcome(&label, u"Saved."_s);
    QCOMPARE(label.text(), u"Saved."_s);
    reportOutcome(&label, {});
    QCOMPARE(label.text(), QString());
}

void SpokenTest::everyPartOfTheCounterIsNamed()
{
    QMainWindow form;
    const Controls controls(form);
    for (PickList *list : form.findChildren<PickList *>()) {
        QVERIFY2(!spokenName(list).isEmpty(), qPrintable(list->objectName()));
        QCOMPARE(spokenName(list->lineEdit()), spokenName(list));
    }
    for (const QFrame *panel :
         {controls.Frame1, controls.Frame2, controls.Frame3, controls.Frame4, controls.Frame5, controls.Frame7,
          controls.Frame8, controls.Frame9, controls.Frame10, controls.Frame11, controls.Frame12, controls.Frame13})
        QVERIFY2(!panel->accessibleName().isEmpty(), qPrintable(panel->objectName()));
    const QMap<int, QString> figures{{3, u"Today's Sales"_s},
                                     {4, u"Today's Sales Total"_s},
                                     {8, u"Total Available Item(s):"_s},
                                     {9, u"Low Reorder Level:"_s}};
    for (const auto &[figure, caption] : figures.asKeyValueRange()) {
        const auto labels = readerOf(controls.Label6.at(static_cast<size_t>(figure)))->relations(QAccessible::Label);
        QCOMPARE(labels.size(), 1);
        QCOMPARE(labels.first().first->text(QAccessible::Name), caption);
        QCOMPARE(spokenName(controls.Label6.at(static_cast<size_t>(figure))),
                 controls.Label6.at(static_cast<size_t>(figure))->text());
    }
}

HARROWBY_TEST(spoken_test, SpokenTest)
#include "spoken_test.moc"
