// SPDX-License-Identifier: MIT
#include "basic/item_key.h"
#include "basic/text.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

class TestTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void trims_data();
    void trims();
    void joinsKey();
    void splitsKey_data();
    void splitsKey();
};

void TestTexts::trims_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trimmed");
    QTest::addColumn<QString>("upper");
    QTest::newRow("empty") << QString() << QString() << QString();
    QTest::newRow("blanks") << u"   "_s << QString() << QString();
    QTest::newRow("around") << u"  Ab c "_s << u"Ab c"_s << u"AB C"_s;
    QTest::newRow("tabs are data") << u"\tx\n"_s << u"\tx\n"_s << u"\tX\n"_s;
    QTest::newRow("no-break space is data") << u"\u00a0x"_s << u"\u00a0x"_s << u"\u00a0X"_s;
    QTest::newRow("letters with marks") << u" é "_s << u"é"_s << u"É"_s;
}

void TestTexts::trims()
{
    QFETCH(const QString, text);
    QTEST(trimBlanks(text), "trimmed");
    QTEST(trimmedUpper(text), "upper");
}

void TestTexts::joinsKey()
{
    QCOMPARE(itemKey(u"12"_s, u"Milk"_s), u"12  |  Milk"_s);
    QCOMPARE(itemKey({}, {}), u"  |  "_s);
    QByteArray key("what stood there before, and was longer");
    putItemKey(key, u8"12", u8"Cr\u00e8me");
    QCOMPARE(QString::fromUtf8(key), itemKey(u"12"_s, u"Cr\u00e8me"_s));
    putItemKey(key, {}, {});
    QCOMPARE(key, QByteArray("  |  "));
}

void TestTexts::splitsKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("costId");
    QTest::newRow("plain") << u"12  |  Milk"_s << u"12"_s << u"MILK"_s << u"12"_s;
    QTest::newRow("case of the ID") << u"A1  |  Tea"_s << u"A1"_s << u"TEA"_s << u"A1"_s;
    QTest::newRow("case kept") << u"a1b  |  tea"_s << u"a1b"_s << u"TEA"_s << u"a1b"_s;
    QTest::newRow("blanks around") << u"  A1   |   Tea  "_s << u"A1"_s << u"TEA"_s << u"A1"_s;
    QTest::newRow("separator missing") << u"A1 Tea"_s << QString() << QString() << u"A1 Tea"_s;
    QTest::newRow("bar without blanks") << u"A1|Tea"_s << QString() << QString() << u"A1|Tea"_s;
    QTest::newRow("narrow separator") << u"A1 | Tea"_s << QString() << u"EA"_s << u"A1"_s;
    QTest::newRow("empty") << QString() << QString() << QString() << QString();
    QTest::newRow("no name") << u"A1  |  "_s << u"A1"_s << QString() << u"A1"_s;
    QTest::newRow("no ID") << u"  |  Tea"_s << QString() << u"TEA"_s << QString();
    QTest::newRow("separator in the name") << u"A1  |  Tea  |  Pot"_s << u"A1"_s << u"TEA  |  POT"_s << u"A1"_s;
    QTest::newRow("bar in the name") << u"A1  |  Tea | Pot"_s << u"A1"_s << u"TEA | POT"_s << u"A1"_s;
    QTest::newRow("right-to-left") << u"B7  |  \u062a\u0641\u0627\u062d"_s << u"B7"_s << u"\u062a\u0641\u0627\u062d"_s
                                   << u"B7"_s;
    QTest::newRow("emoji") << u"B8  |  \U0001F34E pie"_s << u"B8"_s << u"\U0001F34E PIE"_s << u"B8"_s;
}

void TestTexts::splitsKey()
{
    QFETCH(const QString, key);
    QTEST(GetIDName(key, KeyPiece::Id), "id");
    QTEST(GetIDName(key, KeyPiece::Name), "name");
    QTEST(costLookupId(key), "costId");
}

HARROWBY_CORE_TEST(texts_test, TestTexts)
#include "texts_test.moc"
