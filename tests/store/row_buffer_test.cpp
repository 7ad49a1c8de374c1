// SPDX-License-Identifier: MIT
#include "store/row_buffer.h"

#include "tests/program/test_program.h"

#include <QTest>

#include <limits>

using namespace harrowby;
using namespace Qt::StringLiterals;

class TestRowBuffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsValues();
    void showsTextsInPlace();
    void walksOnce();
    void findsColumnsWhateverTheCase();
    void isCompact();
};

void TestRowBuffer::keepsValues()
{
    using Limits = std::numeric_limits<std::int64_t>;
    const std::vector<DbValue> values{
        {},
        static_cast<std::int64_t>(0),
        static_cast<std::int64_t>(-1),
        static_cast<std::int64_t>(63),
        static_cast<std::int64_t>(64),
        Limits::min(),
        Limits::max(),
        0.0,
        -99.99,
        std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::denorm_min(),
        QString(),
        u"a\0b"_s,
        u"\U0001F34E \u05d0\u05d1"_s,
        QString(10'000, u'x'),
        QByteArray(),
        QByteArray("\x00\xff\x80", 3),
    };
    QStringList columns;
    for (std::size_t i = 0; i < values.size(); ++i)
        columns.append(QString::number(i));
    RowBuffer rows;
    rows.reset(columns);
    for (int row = 0; row < 2; ++row) {
        for (const DbValue &value : values)
            rows.append(value);
        rows.endRow();
    }
    QCOMPARE(rows.count(), 2);
    for (; !rows.atEnd(); rows.moveNext()) {
        for (std::size_t i = 0; i < values.size(); ++i)
            QVERIFY2(rows.value(static_cast<qsizetype>(i)) == values[i],
                     qPrintable(columns[static_cast<qsizetype>(i)]));
    }
}

void TestRowBuffer::showsTextsInPlace()
{
    RowBuffer rows;
    rows.reset({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s});
    for (const DbValue &value : {DbValue(), DbValue(static_cast<std::int64_t>(7)), DbValue(1.5),
                                 DbValue(u"cr\u00e8me"_s), DbValue(QByteArray("bytes"))})
        rows.append(value);
    rows.endRow();
    for (const qsizetype column : {0, 1, 2, 4})
        QVERIFY(!rows.text(column));
    QCOMPARE(rows.text(3)->toByteArray(), QByteArray("cr\xc3\xa8me"));
}

void TestRowBuffer::walksOnce()
{
    RowBuffer rows;
    QVERIFY(rows.atEnd());
    rows.moveNext();
    QVERIFY(rows.atEnd());
    rows.reset({u"n"_s});
    for (std::int64_t i = 0; i < 3; ++i) {
        rows.append(i);
        rows.endRow();
    }
    for (std::int64_t i = 0; i < 3; ++i) {
        QVERIFY(!rows.atEnd());
        QCOMPARE(rows.row(), static_cast<qsizetype>(i));
        QVERIFY(rows.value(0) == DbValue(i));
        rows.moveNext();
    }
    QVERIFY(rows.atEnd());
    QCOMPARE(rows.row(), 3);
    rows.moveNext();
    QCOMPARE(rows.row(), 3);
    rows.reset({});
    QCOMPARE(rows.row(), 0);
    QCOMPARE(rows.count(), 0);
}

void TestRowBuffer::findsColumnsWhateverTheCase()
{
    RowBuffer rows;
    rows.reset({u"counts"_s, u"StockID"_s, u"STOCKID"_s, u"Übung"_s});
    QCOMPARE(rows.column(u"Counts"_s), 0);
    QCOMPARE(rows.column(u"COUNTS"_s), 0);
    QCOMPARE(rows.column(u"counts"_s), 0);
    QCOMPARE(rows.column(u"stockid"_s), 1);
    QCOMPARE(rows.column(u"STOCKID"_s), 1);
    QCOMPARE(rows.column(u"übung"_s), 3);
    QCOMPARE(rows.column(u"count"_s), -1);
    QCOMPARE(rows.column(QString()), -1);
    rows.reset({u"other"_s});
    QCOMPARE(rows.column(u"Counts"_s), -1);
}

void TestRowBuffer::isCompact()
{
    RowBuffer rows;
    const QStringList columns{u"StockID"_s,       u"StockName"_s,      u"StockCategory"_s,   u"StockCost"_s,
                              u"StockReorder"_s,  u"StockAvailable"_s, u"StockUse"_s,        u"StockLastUpdated"_s,
                              u"StockModified"_s, u"StockAdded"_s,     u"StockReorderUser"_s};
    rows.reset(columns);
    qsizetype bytes = 0;
    for (int i = 0; i < 100'000; ++i) {
        const QString number = QString::number(i);
        for (const QString &text : {u"BEV-"_s + number, u"ORGANIC APPLE JUICE "_s + number, u"BEVERAGES"_s}) {
            rows.append(text);
            bytes += text.size();
        }
        rows.append(1.25);
        rows.append(static_cast<std::int64_t>(10));
        rows.append(static_cast<std::int64_t>(50));
        bytes += 8 + 1 + 1;
        for (const QString &text : {u"Enabled"_s, u"05-Mar-18 14:07:09"_s, u"MANAGER"_s, u"MANAGER"_s, u"MANAGER"_s}) {
            rows.append(text);
            bytes += text.size();
        }
        rows.endRow();
    }
    QCOMPARE(rows.count(), 100'000);
    // One byte for the kind and length of a value, two for a text of 16 bytes and more.
    QVERIFY2(rows.byteSize() <= bytes + 100'000 * (columns.size() + 2), qPrintable(QString::number(rows.byteSize())));
}

HARROWBY_CORE_TEST(row_buffer_test, TestRowBuffer)
#include "row_buffer_test.moc"
