// SPDX-License-Identifier: MIT
#include "tests/input/keyboard.h"
#include "tests/program/test_program.h"
#include "tests/ui/counter_guest.h"
#include "ui/widgets/pick_list.h"

#include <QMessageBox>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Codes that are typed at the window, and a host that takes them.
class CounterCodesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nothingWithoutAHost();
    void places_data();
    void places();
    void loggedOut();
    void digitsStillChooseTabs();
    void boxIsNotAnswered();
    void restBehindAnUnknownCode();
    void whileAListFills();
    void oddCodes_data();
    void oddCodes();
    void noWindow();

private:
    void listen();
    void type(const QString &text, int gap = 5);
    [[nodiscard]] QStringList told();

    std::unique_ptr<test::Counter> m_till;
    std::unique_ptr<Keyboard> m_keyboard;
    std::unique_ptr<QObject> m_host;
    QStringList m_told;
    QString m_notKnown; ///< of this code the host says so
};

void CounterCodesTest::init()
{
    m_till = std::make_unique<test::Counter>();
    openForGuests(*m_till);
    m_keyboard = std::make_unique<Keyboard>(m_till->window());
    m_told.clear();
    m_notKnown.clear();
    listen();
}

void CounterCodesTest::cleanup()
{
    harrowby::Counter::instance().takeCodes({});
    m_host.reset();
    m_keyboard.reset();
    m_till.reset();
}

void CounterCodesTest::listen()
{
    m_host = std::make_unique<QObject>();
    auto *counter = &harrowby::Counter::instance();
    connect(counter, &harrowby::Counter::codeRead, m_host.get(), [this, counter](const QString &code) {
        m_told << code;
        if (code == m_notKnown)
            counter->codeNotKnown();
        else
            m_told << QString::fromLatin1(name(counter->sell(code)));
    });
    connect(counter, &harrowby::Counter::codeRefused, m_host.get(),
            [this](harrowby::Counter::CodeRefusal why) { m_told << u"refused %1"_s.arg(static_cast<int>(why)); });
    counter->takeCodes(CodeReaderSettings{.longestGapMs = 50, .shortest = 2, .longest = 64, .prefix = {}});
}

void CounterCodesTest::type(const QString &text, int gap)
{
    m_keyboard->pass(1000);
    m_keyboard->type(text, gap);
}

QStringList CounterCodesTest::told()
{
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    return std::exchange(m_told, {});
}

void CounterCodesTest::nothingWithoutAHost()
{
    harrowby::Counter::instance().takeCodes({});
    m_till->chooseTab("TabStrip1", WorkArea::CustomSales);
    m_till->find<PickList>("Combo4")->setFocus();
    m_till->find<PickList>("Combo4")->lineEdit()->selectAll();
    type(u"4006\t"_s);
    QCOMPARE(m_till->text("Combo4"), u"4006"_s);
    QVERIFY(!m_till->hasFocus("Combo4"));
    QCOMPARE(told(), QStringList());
}

void CounterCodesTest::places_data()
{
    QTest::addColumn<int>("area");
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<bool>("takesText");
    const auto add = [](int area, const char *control, bool takesText) {
        QTest::newRow(control) << area << QByteArray(control) << takesText;
    };
    add(WorkArea::QuickSales, "Command1_0", false);
    add(WorkArea::QuickSales, "TabStrip1", false);
    add(WorkArea::QuickSales, "Command20", false);
    add(WorkArea::QuickSales, "LV3", false);
    add(WorkArea::QuickSales, "Combo1", false);
    add(WorkArea::CustomSales, "Combo2", false);
    add(WorkArea::CustomSales, "Combo3", true);
    add(WorkArea::CustomSales, "Combo4", false);
    add(WorkArea::CustomSales, "Command15", false);
    add(WorkArea::EditStock, "Combo6", true);
    add(WorkArea::EditStock, "Combo7", true);
    add(WorkArea::EditStock, "Combo8", false);
    add(WorkArea::EditStock, "Combo13", false);
    add(WorkArea::EditStock, "Combo14", false);
    add(WorkArea::EditStock, "LV", false);
    add(WorkArea::ReorderStock, "Combo10", false);
    add(WorkArea::ReorderStock, "Combo11", true);
    add(WorkArea::Settings, "Check1", false);
    add(WorkArea::Settings, "Combo17", true);
}

void CounterCodesTest::places()
{
    QFETCH(const int, area);
    QFETCH(const QByteArray, control);
    QFETCH(const bool, takesText);
    m_till->chooseTab("TabStrip1", area);
    auto *widget = m_till->find(control.constData());
    widget->setFocus();
    if (auto *list = qobject_cast<PickList *>(widget); list != nullptr && list->lineEdit() != nullptr)
        list->lineEdit()->selectAll();
    const QString before = widget->property("currentText").toString();
    const QStringList rows = m_till->cart();
    for (const QChar end : {u'\r', u'\t'}) {
        type(u"A1"_s + end);
        QCOMPARE(told(), takesText ? QStringList() : (QStringList{u"A1"_s, u"Done"_s}));
        QVERIFY(m_till->hasFocus(control.constData()));
        if (takesText)
            break;
    }
    QCOMPARE(widget->property("currentText").toString(), takesText ? u"A1"_s : before);
    QCOMPARE(m_till->cart(), takesText ? rows : QStringList{u"A1  |  TEA|2|5.00"_s});
}

/// The gate refuses it, and nothing stays in the login's entries but what was typed into the hidden one.
void CounterCodesTest::loggedOut()
{
    m_till->boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
    m_till->click("Command27");
    QVERIFY(m_till->hasFocus("Text3"));
    m_till->boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    type(u"A1\r"_s);
    QCOMPARE(told(), (QStringList{u"A1"_s, u"NotLoggedIn"_s}));
    QCOMPARE(m_till->text("Text3"), QString());
    type(u"ann"_s, 120);
    QTRY_COMPARE(m_till->text("Text3"), u"ANN"_s);
    type(u"\t"_s);
    QVERIFY(m_till->hasFocus("Text4"));
    type(u"PW\r"_s);
    QCOMPARE(told(), QStringList());
    QCOMPARE(m_till->state().login.LoggedUser, u"ANN"_s);
}

void CounterCodesTest::digitsStillChooseTabs()
{
    m_till->find("TabStrip1")->setFocus();
    type(u"2"_s);
    QTRY_COMPARE(m_till->selectedTab("TabStrip1"), WorkArea::CustomSales);
    type(u"31"_s, 120);
    QTRY_COMPARE(m_till->selectedTab("TabStrip1"), WorkArea::QuickSales);
    type(u"55\r"_s);
    QCOMPARE(told(), (QStringList{u"55"_s, u"Unknown"_s}));
    QCOMPARE(m_till->selectedTab("TabStrip1"), WorkArea::QuickSales);
}

/// A reader's "y" and Enter would be answers.
void CounterCodesTest::boxIsNotAnswered()
{
    type(u"A1\r"_s);
    QCOMPARE(told(), (QStringList{u"A1"_s, u"Done"_s}));
    QMessageBox box(QMessageBox::Question, {}, u"Purchased Cart?"_s, QMessageBox::Yes | QMessageBox::No,
                    &m_till->window());
    box.open();
    Keyboard keyboard(box);
    keyboard.pass(5000);
    keyboard.type(u"ynA1\r"_s, 5);
    QVERIFY(box.isVisible());
    QCOMPARE(told(), QStringList{u"refused 0"_s});
    box.close();
    m_keyboard->pass(9000);
    type(u"A1\r"_s);
    QCOMPARE(told(), (QStringList{u"A1"_s, u"Done"_s}));
}

void CounterCodesTest::restBehindAnUnknownCode()
{
    m_notKnown = u"4506"_s;
    type(u"4506\rA1\rS1\r"_s);
    QCOMPARE(told(), (QStringList{u"4506"_s, u"refused 1"_s, u"refused 1"_s}));
    type(u"A1\rS1\r"_s); // two scans of a reader that is quick
    QCOMPARE(told(), (QStringList{u"A1"_s, u"Done"_s, u"S1"_s, u"Done"_s}));
    type(QString(65, u'7') + u"\rA1\r"_s);
    QCOMPARE(told(), (QStringList{u"refused 2"_s, u"refused 1"_s}));
}

void CounterCodesTest::whileAListFills()
{
    m_till->chooseTab("TabStrip1", WorkArea::EditStock);
    // The window breathes within the handler that fills the list.
    QTimer::singleShot(0, this, [this] { type(u"A1\r"_s); });
    m_till->click("Command7");
    QTRY_COMPARE(m_told, (QStringList{u"A1"_s, u"Done"_s}));
    QCOMPARE(m_till->cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
}

void CounterCodesTest::oddCodes_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("quotes") << u"A1' or '1'='1"_s << true;
    QTest::newRow("another statement") << u"A1';delete from StockList;--"_s << true;
    QTest::newRow("signs of patterns") << u"%_*?\"\\"_s << true;
    QTest::newRow("right to left") << u"\u202eA1\u200f"_s << true; // as a keyboard's layout may have it
    QTest::newRow("ten thousand") << QString(10'000, u'9') << false;
}

/// Told as they were typed, and sold to nobody.
void CounterCodesTest::oddCodes()
{
    QFETCH(const QString, typed);
    QFETCH(const bool, isTold);
    const QStringList stock = m_till->file.rows(u"SELECT * FROM StockList"_s);
    m_till->find("Command1_0")->setFocus();
    type(typed + u'\r');
    QCOMPARE(told(), isTold ? QStringList({typed, u"Unknown"_s}) : QStringList{u"refused 2"_s});
    QCOMPARE(m_till->cart(), QStringList());
    QCOMPARE(m_till->file.rows(u"SELECT * FROM StockList"_s), stock);
    type(u"A1\r"_s);
    QCOMPARE(told(), (QStringList{u"A1"_s, u"Done"_s}));
}

void CounterCodesTest::noWindow()
{
    m_till->close();
    QWidget another;
    another.show();
    Keyboard(another).type(u"A1\r"_s, 5);
    QCOMPARE(told(), (QStringList{u"A1"_s, u"NoWindow"_s}));
}

HARROWBY_TEST(counter_codes_test, CounterCodesTest)
#include "counter_codes_test.moc"
