// SPDX-License-Identifier: MIT
#include "ui/widgets/packed_row.h"
#include "ui/widgets/packed_texts.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;

/// Texts of long lists in single blocks.
class PackingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsStayAsTheyAre();
    void textsAreAppendedTogether();
    void textsAreRemoved();
    void rowIsPackedTextByText();
    void upperCaseIsTheTexts_data();
    void upperCaseIsTheTexts();
    void packerServesAgain();
};

namespace {

QStringList all(const PackedTexts &texts)
{
    QStringList list;
    for (qsizetype i = 0; i < texts.size(); ++i)
        list << texts.at(i);
    return list;
}

} // namespace

void PackingTest::textsStayAsTheyAre()
{
    const QStringList expected{QString(), u"HV26030512000300"_s, u"crème"_s,
                               u"a\0b"_s, QString(70'000, u'x'), u"end"_s};
    PackedTexts texts;
    QVERIFY(texts.isEmpty());
    for (const QString &text : expected)
        texts.append(text);
    QCOMPARE(all(texts), expected);
    QCOMPARE(texts.indexOf(u"crème"_s), 2);
    QCOMPARE(texts.indexOf(QString()), 0);
    QCOMPARE(texts.indexOf(u"CRÈME"_s), -1);
    QCOMPARE(texts.indexOf(u"crèm"_s), -1);
    texts.clear();
    QVERIFY(texts.isEmpty());
    QCOMPARE(texts.indexOf(u"end"_s), -1);
}

void PackingTest::textsAreAppendedTogether()
{
    PackedTexts texts{u"A"_s, u"B"_s};
    texts.append(PackedTexts{u"C"_s, u"B"_s});
    texts.append(PackedTexts());
    texts.append(QUtf8StringView(u8"D"));
    QCOMPARE(all(texts), (QStringList{u"A"_s, u"B"_s, u"C"_s, u"B"_s, u"D"_s}));
    QCOMPARE(texts.indexOf(u"B"_s), 1);
}

void PackingTest::textsAreRemoved()
{
    PackedTexts texts{u"A"_s, u"B"_s, u"C"_s};
    texts.removeAt(1);
    QCOMPARE(all(texts), (QStringList{u"A"_s, u"C"_s}));
    texts.removeAt(1);
    texts.append(u"D"_s);
    QCOMPARE(all(texts), (QStringList{u"A"_s, u"D"_s}));
    PackedTexts others{u"X"_s};
    others.append(texts); // removed texts are not appended
    QCOMPARE(all(others), (QStringList{u"X"_s, u"A"_s, u"D"_s}));
    QCOMPARE(others.indexOf(u"B"_s), -1);
}

void PackingTest::rowIsPackedTextByText()
{
    RowPacker packer(4);
    packer.begin();
    packer.add(QUtf8StringView(u8"ascii"));
    QCOMPARE(packer.last(), QStringView(u"ascii"));
    packer.add(QUtf8StringView(u8"crème \U0001F95B"));
    QCOMPARE(packer.last(), QStringView(u"crème \U0001F95B"));
    packer.add(QStringView(u"1.50"));
    QCOMPARE(packer.packed().texts(), (QStringList{u"ascii"_s, u"crème \U0001F95B"_s, u"1.50"_s, QString()}));
    packer.add(QUtf8StringView());
    packer.add(QUtf8StringView(u8"one too many"));
    packer.addUpper(QUtf8StringView(u8"one too many"));
    packer.add(QStringView(u"one too many"));
    QCOMPARE(packer.packed().texts(), (QStringList{u"ascii"_s, u"crème \U0001F95B"_s, u"1.50"_s, QString()}));
}

void PackingTest::upperCaseIsTheTexts_data()
{
    QTest::addColumn<QString>("text");
    for (const QString &text :
         {u"bev-0001"_s, u"`az{@AZ["_s, u"crème brûlée"_s, u"straße"_s, u"ﬁsh"_s, u"οδος"_s, u"ıi"_s, QString()})
        QTest::newRow(qPrintable(u"text "_s + text)) << text;
}

void PackingTest::upperCaseIsTheTexts()
{
    QFETCH(const QString, text);
    RowPacker packer(1);
    packer.begin();
    packer.addUpper(QUtf8StringView(text.toUtf8()));
    QCOMPARE(packer.packed().text(0), text.toUpper());
}

void PackingTest::packerServesAgain()
{
    RowPacker packer(2);
    packer.begin();
    packer.add(QStringView(u"A1"));
    packer.add(QStringView(u"TEA"));
    const PackedRow first = packer.packed();
    packer.begin();
    packer.add(QStringView(u"B"));
    QCOMPARE(packer.packed().texts(), (QStringList{u"B"_s, QString()}));
    QCOMPARE(first.texts(), (QStringList{u"A1"_s, u"TEA"_s}));
}

HARROWBY_CORE_TEST(packing_test, PackingTest)
#include "packing_test.moc"
