// SPDX-License-Identifier: MIT
#include "basic/case_folding.h"

#include "tests/program/test_program.h"

#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <vector>

using namespace harrowby;
using namespace Qt::StringLiterals;

namespace {

bool areEqual(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString textOf(char32_t character)
{
    return QString::fromUcs4(&character, 1);
}

} // namespace

/// Texts that compare equal must have equal hashes.
class TestCaseFolding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalTexts_data();
    void equalTexts();
    void everyCharacter();
    void anyTexts();
    void ordinaryIdsScatter();
};

void TestCaseFolding::equalTexts_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::newRow("empty") << QString() << u""_s;
    QTest::newRow("ASCII") << u"bev-0001"_s << u"BEV-0001"_s;
    QTest::newRow("letters with marks") << u"çäéîõù"_s << u"ÇÄÉÎÕÙ"_s;
    QTest::newRow("Greek, with a final sigma") << u"ΟΔΟΣ"_s << u"οδος"_s;
    QTest::newRow("Kelvin's K") << u"k1"_s << u"\u212A1"_s;
    QTest::newRow("long s") << u"s1"_s << u"\u017F1"_s;
    QTest::newRow("sharp s") << u"ß"_s << u"ẞ"_s;
    QTest::newRow("micro") << u"µ"_s << u"Μ"_s;
    QTest::newRow("beyond 16 bits") << u"𐐀1"_s << u"𐐨1"_s;
    QTest::newRow("lone surrogates") << QString(QChar(0xD801)) + u'a' << QString(QChar(0xD801)) + u'A';
}

void TestCaseFolding::equalTexts()
{
    QFETCH(const QString, a);
    QFETCH(const QString, b);
    QVERIFY(areEqual(a, b));
    QCOMPARE(caseFoldedHash(a), caseFoldedHash(b));
}

void TestCaseFolding::everyCharacter()
{
    for (char32_t character = 1; character <= QChar::LastValidCodePoint; ++character) {
        if (QChar::isSurrogate(character))
            continue;
        const QString text = textOf(character);
        for (const char32_t other : {QChar::toUpper(character), QChar::toLower(character),
                                     QChar::toTitleCase(character), QChar::toCaseFolded(character)}) {
            if (other != character && areEqual(text, textOf(other)))
                QVERIFY2(caseFoldedHash(text) == caseFoldedHash(textOf(other)), qPrintable(text));
        }
    }
}

void TestCaseFolding::anyTexts()
{
    // Few different characters, so that many random pairs are equal; parts of surrogate pairs among them.
    const std::vector<char16_t> alphabet{u'a', u'A',   u'K',   0x212A, 0x00DF, 0x1E9E, 0x0130, 0x0131,
                                         u'i', 0xD801, 0xDC00, 0xDC28, 0xD83A, 0xDD00, 0xDD22};
    QRandomGenerator random(7);
    const auto anyText = [&] {
        QString text;
        for (int left = random.bounded(1, 4); left > 0; --left)
            text += QChar(alphabet[static_cast<std::size_t>(random.bounded(static_cast<int>(alphabet.size())))]);
        return text;
    };
    int equal = 0;
    for (int pair = 0; pair < 200'000; ++pair) {
        const QString a = anyText();
        const QString b = anyText();
        if (!areEqual(a, b))
            continue;
        ++equal;
        QVERIFY2(caseFoldedHash(a) == caseFoldedHash(b), qPrintable(a + u' ' + b));
    }
    QVERIFY(equal > 1000);
}

void TestCaseFolding::ordinaryIdsScatter()
{
    QSet<std::size_t> hashes;
    for (int i = 0; i < 100'000; ++i)
        hashes.insert(caseFoldedHash(u"BEV-%1"_s.arg(i)));
    QVERIFY(hashes.size() > 99'990);
}

HARROWBY_CORE_TEST(case_folding_test, TestCaseFolding)
#include "case_folding_test.moc"
