// SPDX-License-Identifier: MIT
#include "app/shop/receipt_head.h"

#include "tests/program/test_program.h"

#include <QHash>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

class ReceiptHeadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_saved.clear();
        m_writes = 0;
        m_fails = false;
    }

    void defaults();
    void savesWhatChanged();
    void newShopIsAskedForWhatIsMissing();
    void newShopSavesOnlyWhatIsMissing();
    void failureIsTold();
    void emailReportAsTheTillReadsIt_data();
    void emailReportAsTheTillReadsIt();
    void oneLineOfTheReceipt_data();
    void oneLineOfTheReceipt();
    void previewShowsTheHead();

private:
    [[nodiscard]] OfficeSettings settings()
    {
        return {[this](const QString &section, const QString &key, const QString &defaultValue) {
                    return m_saved.value(section + u'/' + key, defaultValue);
                },
                [this](const QString &section, const QString &key, const QString &value) {
                    ++m_writes;
                    if (!m_fails)
                        m_saved.insert(section + u'/' + key, value);
                    return !m_fails;
                }};
    }

    QHash<QString, QString> m_saved;
    int m_writes = 0;
    bool m_fails = false;
};

void ReceiptHeadTest::defaults()
{
    QCOMPARE(readReceiptHead(settings()), (ReceiptHead{{}, {}, u"N"_s, true}));
}

void ReceiptHeadTest::savesWhatChanged()
{
    const ReceiptHead before = readReceiptHead(settings());
    QVERIFY(saveReceiptHead(settings(), before, before));
    QCOMPARE(m_writes, 0);
    const ReceiptHead head = {u"Corner Shop"_s, u"12 High Street"_s, u"GBP"_s, false};
    QVERIFY(saveReceiptHead(settings(), before, head));
    QCOMPARE(m_writes, 4);
    QCOMPARE(readReceiptHead(settings()), head);
    QCOMPARE(m_saved.value(u"option/Title"_s), u"Corner Shop"_s);
    QCOMPARE(m_saved.value(u"option/address"_s), u"12 High Street"_s);
    QCOMPARE(m_saved.value(u"Option/Currency"_s), u"GBP"_s);
    QCOMPARE(m_saved.value(u"Option/EmailReport"_s), u"0"_s);
}

void ReceiptHeadTest::newShopIsAskedForWhatIsMissing()
{
    QCOMPARE(proposeReceipt(settings()).title, u"My Shop"_s);
    QVERIFY(!proposeReceipt(settings()).currency.value_or(QString()).isEmpty());
    m_saved = {{u"option/Title"_s, {}}}; // also an empty one is one that the user has saved
    QVERIFY(!proposeReceipt(settings()).title);
    QVERIFY(proposeReceipt(settings()).currency);
    m_saved.insert(u"Option/Currency"_s, u"EUR"_s);
    QCOMPARE(proposeReceipt(settings()), ReceiptProposal());
}

void ReceiptHeadTest::newShopSavesOnlyWhatIsMissing()
{
    QVERIFY(saveNewShop(settings(), {u"Corner Shop"_s, u"EUR"_s}));
    QCOMPARE(readReceiptHead(settings()), (ReceiptHead{u"Corner Shop"_s, {}, u"EUR"_s, false}));
    QVERIFY(saveNewShop(settings(), {u"Other"_s, u"USD"_s}));
    QCOMPARE(m_writes, 3);
    QCOMPARE(readReceiptHead(settings()), (ReceiptHead{u"Corner Shop"_s, {}, u"EUR"_s, false}));

    m_saved = {{u"Option/EmailReport"_s, u"1"_s}};
    QVERIFY(saveNewShop(settings(), {}));
    QCOMPARE(readReceiptHead(settings()), (ReceiptHead{{}, {}, u"N"_s, true}));
    m_saved.clear();
    m_fails = true;
    QVERIFY(!saveNewShop(settings(), {u"Corner Shop"_s, {}}));
}

void ReceiptHeadTest::failureIsTold()
{
    m_fails = true;
    QVERIFY(!saveReceiptHead(settings(), {}, {u"a"_s, u"b"_s, u"c"_s, false}));
    QCOMPARE(m_writes, 4);
}

void ReceiptHeadTest::emailReportAsTheTillReadsIt_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<bool>("on");
    QTest::newRow("1") << u"1"_s << true;
    QTest::newRow("0") << u"0"_s << false;
    QTest::newRow("-1") << u"-1"_s << true;
    QTest::newRow("True") << u"True"_s << true;
    QTest::newRow("nonsense") << u"maybe"_s << false;
}

void ReceiptHeadTest::emailReportAsTheTillReadsIt()
{
    QFETCH(QString, saved);
    QFETCH(bool, on);
    m_saved.insert(u"Option/EmailReport"_s, saved);
    QCOMPARE(readReceiptHead(settings()).emailReport, on);
}

void ReceiptHeadTest::oneLineOfTheReceipt_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("currency");
    QTest::addColumn<QString>("said");
    QTest::newRow("usual") << u"Corner Shop"_s << u"12 High Street, Harrow"_s << u"N"_s << QString();
    QTest::newRow("no head") << QString() << QString() << u"N"_s << QString();
    QTest::newRow("long title") << QString(60, u'w') << QString() << u"N"_s << u"title is too long"_s;
    QTest::newRow("title too long in capitals only")
        << QString(24, u'i') + QString(12, u'w') << QString() << u"N"_s << u"title is too long"_s;
    QTest::newRow("long address") << QString() << QString(90, u'w') << u"N"_s << u"address is too long"_s;
    QTest::newRow("blank currency") << QString() << QString() << u" "_s << u"enter a currency"_s;
    QTest::newRow("long currency") << QString() << QString() << QString(80, u'w') << u"currency is too long"_s;
    QTest::newRow("line break") << u"a\nb"_s << QString() << u"N"_s << u"cannot be typed"_s;
}

void ReceiptHeadTest::oneLineOfTheReceipt()
{
    QFETCH(QString, title);
    QFETCH(QString, address);
    QFETCH(QString, currency);
    QFETCH(QString, said);
    const auto checked = checkReceiptHead({title, address, currency, true});
    const QString problem = checked ? QString() : checked.error();
    QVERIFY2(said.isEmpty() ? problem.isEmpty() : problem.contains(said), qPrintable(problem));
}

void ReceiptHeadTest::previewShowsTheHead()
{
    const QPixmap plain = receiptPreview({{}, {}, u"N"_s, true}, 300, 1);
    QCOMPARE(plain.width(), 300);
    const QImage titled = receiptPreview({u"Corner Shop"_s, {}, u"N"_s, true}, 300, 1).toImage();
    QVERIFY(titled != plain.toImage());
    QCOMPARE(receiptPreview({{}, {}, u"N"_s, true}, 300, 2).width(), 600);
}

HARROWBY_TEST(app_receipt_head_test, ReceiptHeadTest)
#include "receipt_head_test.moc"
