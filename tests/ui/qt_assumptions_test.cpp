// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include <QAbstractItemView>
#include <QAbstractTableModel>
#include <QComboBox>
#include <QCompleter>
#include <QFrame>
#include <QLineEdit>
#include <QPaintEvent>
#include <QProxyStyle>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTest>
#include <QTreeView>

#include <memory>

using namespace Qt::StringLiterals;

/// Undocumented behaviour of Qt that PickList, Panel and RowList rely on or work around, one test each, on Qt's own
/// classes. A test that fails under a new Qt names the code to check: it no longer works, or it is no longer needed.
class QtAssumptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // PickList
    void placeholderKeepsTheFirstEntryFromBeingCurrent();
    void setLineEditMakesNoCompleterForAnEditThatHasOne();
    void popupIsADirectChildFrame();
    void sizePolicyMakesThePopup();
    void changeEventMakesThePopup();
    void resizeEventPlacesTheEdit();
    void delegateOfAMenuHeedsNoStyleSheet();
    void leavingTheSelectionClearsTheText();
    void blockedChangesLeaveTheBoxWhole();
    void enterActivatesTheEntryThatWasTyped();
    // Panel
    void polishComesWithTheWindowAlsoWhereItIsHidden();
    void withheldPolishComesOnlyWhenItIsSent();
    // RowList
    void currentRowLaysAHiddenListOut();
    void blockedCurrentRowIsThereWhenTheListIsShown();
    void scrollingByPixelsLaysTheListOut();
    void withoutAutoScrollTheListStays();
    void changedCellsAloneAreRepainted();
};

namespace {

bool hasPopup(const QComboBox &box)
{
    return box.findChild<QFrame *>({}, Qt::FindDirectChildrenOnly) != nullptr;
}

std::unique_ptr<QComboBox> editableBox(const QStringList &entries)
{
    auto box = std::make_unique<QComboBox>();
    box->setLineEdit(new QLineEdit(box.get())); // setEditable() would make the list that drops down
    box->setCompleter(nullptr);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->addItems(entries);
    return box;
}

/// Counts the rows that a view lays out.
class Rows : public QAbstractTableModel
{
public:
    static constexpr int count = 500;
    mutable int asked = 0;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : count; }
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : 3; }
    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override
    {
        ++asked;
        return QAbstractTableModel::index(row, column, parent);
    }
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(index.row()) : QVariant();
    }
};

/// Counts an object's events of one type, and withholds them if it is told to.
class Events : public QObject
{
public:
    Events(QObject *watched, QEvent::Type type, bool withholds = false) : m_type(type), m_withholds(withholds)
    {
        watched->installEventFilter(this);
    }
    int count = 0;
    QRegion painted;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != m_type)
            return false;
        ++count;
        if (m_type == QEvent::Paint)
            painted += static_cast<QPaintEvent *>(event)->region();
        return m_withholds;
    }

private:
    QEvent::Type m_type;
    bool m_withholds;
};

void select(QTreeView &view, int row)
{
    view.selectionModel()->setCurrentIndex(view.model()->index(row, 0),
                                           QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

} // namespace

void QtAssumptionsTest::placeholderKeepsTheFirstEntryFromBeingCurrent()
{
    QComboBox box;
    box.setPlaceholderText(u" "_s);
    box.addItem(u"A"_s);
    QCOMPARE(box.currentIndex(), -1);
    QComboBox without;
    without.addItem(u"A"_s);
    QCOMPARE(without.currentIndex(), 0);
}

void QtAssumptionsTest::setLineEditMakesNoCompleterForAnEditThatHasOne()
{
    QCompleter completer;
    {
        QComboBox box;
        auto *edit = new QLineEdit(&box);
        edit->setCompleter(&completer);
        box.setLineEdit(edit);
        QCOMPARE(box.completer(), &completer);
        QVERIFY(!box.findChild<QCompleter *>());
        box.setCompleter(nullptr);
        QVERIFY(!edit->completer());
    }
    completer.setCompletionPrefix(u"lives on"_s); // not deleted with the edit, which does not own it
    QComboBox plain;
    plain.setLineEdit(new QLineEdit(&plain));
    QVERIFY(plain.findChild<QCompleter *>());
}

void QtAssumptionsTest::popupIsADirectChildFrame()
{
    const auto box = editableBox({u"A"_s});
    QVERIFY(!hasPopup(*box));
    const QAbstractItemView *view = box->view();
    QVERIFY(hasPopup(*box));
    QCOMPARE(view->parentWidget(), box->findChild<QFrame *>({}, Qt::FindDirectChildrenOnly));
}

void QtAssumptionsTest::sizePolicyMakesThePopup()
{
    const auto box = editableBox({u"A"_s});
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QVERIFY(hasPopup(*box));
}

void QtAssumptionsTest::changeEventMakesThePopup()
{
    for (const QEvent::Type change : {QEvent::FontChange, QEvent::StyleChange}) {
        const auto box = editableBox({u"A"_s});
        QEvent event(change);
        QCoreApplication::sendEvent(box.get(), &event);
        QVERIFY2(hasPopup(*box), qPrintable(QString::number(change)));
    }
}

void QtAssumptionsTest::resizeEventPlacesTheEdit()
{
    const auto box = editableBox({u"A"_s});
    box->resize(200, 44);
    box->show();
    const QRect place = box->lineEdit()->geometry();
    box->lineEdit()->setGeometry(0, 0, 1, 1);
    QResizeEvent same(box->size(), box->size());
    QCoreApplication::sendEvent(box.get(), &same);
    QCOMPARE(box->lineEdit()->geometry(), place);
}

void QtAssumptionsTest::delegateOfAMenuHeedsNoStyleSheet()
{
    /// A style whose combo boxes drop down like menus, as some desktops have it.
    class MenuStyle : public QProxyStyle
    {
    public:
        int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                      QStyleHintReturn *returned) const override
        {
            return hint == SH_ComboBox_Popup ? 1 : QProxyStyle::styleHint(hint, option, widget, returned);
        }
    };
    MenuStyle style;
    const auto box = editableBox({u"A"_s});
    box->setStyle(&style);
    box->setStyleSheet(u"QComboBox QAbstractItemView::item { min-height: 77px; }"_s);
    box->show();
    QVERIFY(box->view()->sizeHintForRow(0) < 77);
    box->view()->setItemDelegate(new QStyledItemDelegate(box->view()));
    QVERIFY(box->view()->sizeHintForRow(0) >= 77);
}

void QtAssumptionsTest::leavingTheSelectionClearsTheText()
{
    const auto box = editableBox({u"A"_s, u"B"_s});
    box->setCurrentIndex(1);
    box->setCurrentIndex(-1);
    QCOMPARE(box->currentText(), QString());
    box->setCurrentIndex(1);
    box->model()->removeRows(0, 2);
    QCOMPARE(box->currentText(), QString());
}

void QtAssumptionsTest::blockedChangesLeaveTheBoxWhole()
{
    const auto box = editableBox({u"A"_s, u"B"_s});
    box->setCurrentIndex(1);
    const QSignalSpy changed(box.get(), &QComboBox::editTextChanged);
    const QSignalSpy current(box.get(), &QComboBox::currentIndexChanged);
    {
        const QSignalBlocker quietly(box.get());
        const QSignalBlocker quietEdit(box->lineEdit());
        box->setCurrentIndex(-1);
        box->lineEdit()->setText(u"B"_s);
    }
    QCOMPARE(changed.count(), 0);
    QCOMPARE(current.count(), 0);
    QCOMPARE(box->currentIndex(), -1);
    QCOMPARE(box->currentText(), u"B"_s);
    QTest::keyClicks(box->lineEdit(), u"x"_s);
    QCOMPARE(box->currentText(), u"Bx"_s);
    QCOMPARE(changed.count(), 1);
    box->setCurrentIndex(0);
    QCOMPARE(box->currentText(), u"A"_s);
    QCOMPARE(current.count(), 1);
}

void QtAssumptionsTest::enterActivatesTheEntryThatWasTyped()
{
    const auto box = editableBox({u"A"_s, u"B"_s});
    box->setCurrentIndex(-1);
    box->show();
    const QSignalSpy activated(box.get(), &QComboBox::activated);
    QTest::keyClicks(box->lineEdit(), u"B"_s);
    QCOMPARE(activated.count(), 0);
    QTest::keyClick(box->lineEdit(), Qt::Key_Return);
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.constFirst().constFirst().toInt(), 1);
}

void QtAssumptionsTest::polishComesWithTheWindowAlsoWhereItIsHidden()
{
    QWidget window;
    auto *panel = new QWidget(&window);
    auto *button = new QPushButton(panel);
    panel->hide();
    const Events polished(button, QEvent::Polish);
    window.show();
    QCOMPARE(polished.count, 1);
    panel->show();
    QCOMPARE(polished.count, 1);
}

void QtAssumptionsTest::withheldPolishComesOnlyWhenItIsSent()
{
    QWidget window;
    window.setStyleSheet(u"QPushButton { min-height: 77px; }"_s);
    auto *button = new QPushButton(&window);
    {
        const Events withheld(button, QEvent::Polish, true);
        window.show();
        QCOMPARE(withheld.count, 1);
    }
    button->ensurePolished();
    QVERIFY(!button->testAttribute(Qt::WA_WState_Polished));
    QVERIFY(button->minimumHeight() < 77);
    QEvent polish(QEvent::Polish);
    QCoreApplication::sendEvent(button, &polish);
    QVERIFY(button->testAttribute(Qt::WA_WState_Polished));
    QVERIFY(button->minimumHeight() >= 77);
}

void QtAssumptionsTest::currentRowLaysAHiddenListOut()
{
    Rows rows;
    QTreeView view;
    view.setModel(&rows);
    view.setAllColumnsShowFocus(true);
    view.setAutoScroll(false);
    rows.asked = 0;
    select(view, Rows::count - 1);
    QVERIFY(rows.asked >= Rows::count);
}

void QtAssumptionsTest::blockedCurrentRowIsThereWhenTheListIsShown()
{
    Rows rows;
    QTreeView view;
    view.setModel(&rows);
    view.setAllColumnsShowFocus(true);
    rows.asked = 0;
    {
        const QSignalBlocker quietly(view.selectionModel());
        select(view, 3);
    }
    QVERIFY(rows.asked < Rows::count);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCOMPARE(view.currentIndex().row(), 3);
    QCOMPARE(view.selectionModel()->selectedRows().value(0).row(), 3);
    const auto middle = [&view](int row) {
        const QRect place = view.visualRect(view.model()->index(row, 0));
        return view.viewport()->grab().toImage().pixelColor(place.right() - 2, place.center().y());
    };
    QVERIFY(middle(3) != middle(5)); // painted as selected
    QTest::keyClick(&view, Qt::Key_Down);
    QCOMPARE(view.currentIndex().row(), 4);
}

void QtAssumptionsTest::scrollingByPixelsLaysTheListOut()
{
    Rows rows;
    QTreeView view;
    view.setModel(&rows);
    rows.asked = 0;
    view.setVerticalScrollMode(QTreeView::ScrollPerPixel);
    QVERIFY(rows.asked >= Rows::count);
}

void QtAssumptionsTest::withoutAutoScrollTheListStays()
{
    Rows rows;
    QTreeView view;
    view.setModel(&rows);
    view.resize(300, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.setAutoScroll(false);
    select(view, Rows::count / 2);
    QCOMPARE(view.verticalScrollBar()->value(), 0);
    view.setAutoScroll(true);
    select(view, Rows::count - 1);
    QVERIFY(view.verticalScrollBar()->value() > 0);
}

void QtAssumptionsTest::changedCellsAloneAreRepainted()
{
    Rows rows;
    QTreeView view;
    view.setModel(&rows);
    view.setUniformRowHeights(true);
    view.resize(300, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCoreApplication::processEvents();
    const auto painted = [&](int lastColumn) {
        const Events paints(view.viewport(), QEvent::Paint);
        Q_EMIT rows.dataChanged(rows.index(2, 0), rows.index(2, lastColumn), {Qt::DisplayRole});
        QCoreApplication::processEvents();
        return paints.painted.boundingRect();
    };
    QCOMPARE(painted(0), view.visualRect(rows.index(2, 0)));
    QCOMPARE(painted(1), view.visualRect(rows.index(2, 0)) | view.visualRect(rows.index(2, 1)));
}

HARROWBY_TEST(qt_assumptions_test, QtAssumptionsTest)
#include "qt_assumptions_test.moc"
