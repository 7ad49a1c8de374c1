// SPDX-License-Identifier: MIT
#include "platform/ini_text.h"
#include "platform/ini_value.h"

#include "tests/program/test_program.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

class IniTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void writes_data();
    void writes();
    void roundTrip_data();
    void roundTrip();
    void readsWhatQSettingsWrote_data() { roundTrip_data(); }
    void readsWhatQSettingsWrote();
    void qSettingsReadsWhatWeWrote_data() { roundTrip_data(); }
    void qSettingsReadsWhatWeWrote();
    void names_data();
    void names();
};

void IniTextTest::reads_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("value"); // of Option/EmailReport; null when there is none

    QTest::newRow("plain") << "[Option]\nEmailReport=1\n"_ba << u"1"_s;
    QTest::newRow("no last line end") << "[Option]\nEmailReport=1"_ba << u"1"_s;
    QTest::newRow("CR LF") << "[Option]\r\nEmailReport=1\r\n"_ba << u"1"_s;
    QTest::newRow("other case") << "[OPTION]\nemailreport=1\n"_ba << u"1"_s;
    QTest::newRow("spaced") << " [ Option ] \n  EmailReport =  1  \n"_ba << u"1"_s;
    QTest::newRow("byte order mark") << "\xEF\xBB\xBF[Option]\nEmailReport=1\n"_ba << u"1"_s;
    QTest::newRow("empty file") << ""_ba << QString();
    QTest::newRow("other section") << "[POS]\nEmailReport=1\n"_ba << QString();
    QTest::newRow("before any section") << "EmailReport=1\n[Option]\n"_ba << QString();
    QTest::newRow("other key") << "[Option]\nEmailReports=1\nEmail=2\n"_ba << QString();
    QTest::newRow("comments") << "[Option]\n;EmailReport=1\n# EmailReport=2\n"_ba << QString();
    QTest::newRow("no equals") << "[Option]\nEmailReport\n"_ba << QString();
    QTest::newRow("empty value") << "[Option]\nEmailReport=\n"_ba << u""_s;
    QTest::newRow("section in two places") << "[Option]\nA=1\n[POS]\nB=2\n[option]\nEmailReport=3\n"_ba << u"3"_s;
    QTest::newRow("the last one counts") << "[Option]\nEmailReport=1\nEMAILREPORT=0\n"_ba << u"0"_s;
    QTest::newRow("equals in the value") << "[Option]\nEmailReport=a=b\n"_ba << u"a=b"_s;
    QTest::newRow("semicolon in the value") << "[Option]\nEmailReport=a; b\n"_ba << u"a; b"_s;
    QTest::newRow("typed quotes") << "[Option]\nEmailReport=the \"best\" shop\n"_ba << u"the \"best\" shop"_s;
    QTest::newRow("quotes that do not enclose") << "[Option]\nEmailReport=\"A\" & \"B\"\n"_ba << u"\"A\" & \"B\""_s;
    QTest::newRow("one quote") << "[Option]\nEmailReport=\"\n"_ba << u"\""_s;
    QTest::newRow("open quote") << "[Option]\nEmailReport=\"a\n"_ba << u"\"a"_s;
    QTest::newRow("quoted blanks") << "[Option]\nEmailReport=\"  a \"\n"_ba << u"  a "_s;
    QTest::newRow("typed backslash") << "[Option]\nEmailReport=C:\\Shop\\\n"_ba << u"C:\\Shop\\"_s;
    QTest::newRow("bad hex escape") << "[Option]\nEmailReport=\\xyz\n"_ba << u"\\xyz"_s;
    QTest::newRow("euro") << "[Option]\nEmailReport=\xE2\x82\xAC\n"_ba << u"€"_s;
    QTest::newRow("binary") << "[Option]\n\0\xFF=\xFE\nEmailReport=1\n"_ba << u"1"_s;
    QTest::newRow("stray bracket") << "[Option\nEmailReport=1\n"_ba << QString();
}

void IniTextTest::reads()
{
    QFETCH(const QByteArray, file);
    QFETCH(const QString, value);
    const auto found = IniText(file).value(u"Option"_s, u"EmailReport"_s);
    QCOMPARE(found.has_value(), !value.isNull());
    QCOMPARE(found.value_or(QString()), value);
    QCOMPARE(IniText(file).value(u"oPTION"_s, u"emailREPORT"_s), found);
    QCOMPARE(IniText(file).bytes(), file);
}

void IniTextTest::writes_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after"); // with POS/COM set to "till"

    QTest::newRow("new file") << ""_ba
                              << "[POS]\nCOM=till\n"_ba;
    QTest::newRow("changed") << "[POS]\nCOM=COM1\n"_ba
                             << "[POS]\nCOM=till\n"_ba;
    QTest::newRow("changed in its own case") << "[pos]\ncom=COM1\n"_ba
                                             << "[pos]\ncom=till\n"_ba;
    QTest::newRow("spacing and comments stay") << "; shop\n[POS]\n# printer\n COM =\tCOM1\n\n[X]\nA = 1 ; x\n"_ba
                                               << "; shop\n[POS]\n# printer\n COM =\ttill\n\n[X]\nA = 1 ; x\n"_ba;
    QTest::newRow("CR LF stays") << "[POS]\r\nCOM=COM1\r\nA=1\r\n"_ba
                                 << "[POS]\r\nCOM=till\r\nA=1\r\n"_ba;
    QTest::newRow("no last line end") << "[POS]\nCOM=COM1"_ba
                                      << "[POS]\nCOM=till"_ba;
    QTest::newRow("new key before the blank lines") << "[POS]\nA=1\n\n[X]\nB=2\n"_ba
                                                    << "[POS]\nA=1\nCOM=till\n\n[X]\nB=2\n"_ba;
    QTest::newRow("new key at the end") << "[X]\nB=2\n\n[POS]\nA=1"_ba
                                        << "[X]\nB=2\n\n[POS]\nA=1\nCOM=till\n"_ba;
    QTest::newRow("new section") << "[X]\nB=2"_ba
                                 << "[X]\nB=2\n\n[POS]\nCOM=till\n"_ba;
    QTest::newRow("new section, CR LF") << "[X]\r\nB=2\r\n"_ba
                                        << "[X]\r\nB=2\r\n\r\n[POS]\r\nCOM=till\r\n"_ba;
    QTest::newRow("the last one counts") << "[POS]\nCOM=A\ncom=B\n"_ba
                                         << "[POS]\nCOM=A\ncom=till\n"_ba;
    QTest::newRow("byte order mark stays") << "\xEF\xBB\xBF[POS]\nCOM=A\n"_ba
                                           << "\xEF\xBB\xBF[POS]\nCOM=till\n"_ba;
    QTest::newRow("bytes stay") << "[POS]\nA=\xFF\xFE\nCOM=A\n"_ba
                                << "[POS]\nA=\xFF\xFE\nCOM=till\n"_ba;
    QTest::newRow("empty value") << "[POS]\nCOM=\n"_ba
                                 << "[POS]\nCOM=till\n"_ba;
}

void IniTextTest::writes()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, after);
    IniText text(before);
    text.setValue(u"POS"_s, u"COM"_s, u"till"_s);
    QCOMPARE(text.bytes(), after);
    QCOMPARE(IniText(after).value(u"POS"_s, u"COM"_s), u"till"_s);
}

void IniTextTest::roundTrip_data()
{
    QTest::addColumn<QString>("value");
    const QStringList values = {
        u""_s,
        u"1"_s,
        u"M & M's shop"_s,
        u"a, b"_s,
        u"a;b"_s,
        u"a=b"_s,
        u"say \"hi\""_s,
        u"\"quoted\""_s,
        u"\""_s,
        u" leading"_s,
        u"trailing "_s,
        u"\ttab"_s,
        u"two\r\nlines"_s,
        u"C:\\new\\till"_s,
        u"\\"_s,
        u"\\\\server\\till"_s,
        u"[POS]"_s,
        u"#1"_s,
        u"100 % \u00e9\u20ac \u05e9\u05dc\u05d5\u05dd"_s,
        u"\U0001F6D2 cart"_s,
        u"@home"_s,
        u"@@home"_s,
        u"@Invalid()"_s,
        u"\u0001a\u0002z"_s,
        u"\u001bf"_s,
        u"line\u2028separator"_s,
        u"\ufeffmark"_s,
        u"\ufeff\ufeffa\ufeff"_s,
        QString(10'000, u'x'),
    };
    for (const QString &value : values)
        QTest::newRow(value.left(30).toUtf8().toPercentEncoding().constData()) << value;
}

void IniTextTest::roundTrip()
{
    QFETCH(const QString, value);
    IniText text("[Option]\nOther=1\n"_ba);
    text.setValue(u"Option"_s, u"Title"_s, value);
    const QByteArray bytes = text.bytes();
    QCOMPARE(bytes.count('\n'), 3);
    QCOMPARE(IniText(bytes).value(u"Option"_s, u"Title"_s), value);
    QCOMPARE(IniText(bytes).value(u"Option"_s, u"Other"_s), u"1"_s);
}

void IniTextTest::readsWhatQSettingsWrote()
{
    QFETCH(const QString, value);
    const QTemporaryDir dir;
    const QString path = dir.filePath(u"host.ini"_s);
    QSettings(path, QSettings::IniFormat).setValue(u"Option/Title"_s, value);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(IniText(file.readAll()).value(u"option"_s, u"title"_s), value);
}

void IniTextTest::qSettingsReadsWhatWeWrote()
{
    QFETCH(const QString, value);
    const QTemporaryDir dir;
    QFile file(dir.filePath(u"ours.ini"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    IniText text({});
    text.setValue(u"Option"_s, u"Title"_s, value);
    file.write(text.bytes());
    file.close();
    QCOMPARE(QSettings(file.fileName(), QSettings::IniFormat).value(u"Option/Title"_s).toString(), value);
}

void IniTextTest::names_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("possible");
    QTest::newRow("usual") << u"Option"_s << u"EmailReport"_s << true;
    QTest::newRow("blank inside") << u"My Option"_s << u"My Key"_s << true;
    QTest::newRow("no section") << u""_s << u"Key"_s << false;
    QTest::newRow("no key") << u"Option"_s << u""_s << false;
    QTest::newRow("equals") << u"Option"_s << u"a=b"_s << false;
    QTest::newRow("line break") << u"Option"_s << u"a\nb"_s << false;
    QTest::newRow("comment") << u"Option"_s << u";a"_s << false;
    QTest::newRow("bracket") << u"Op]tion"_s << u"a"_s << false;
    QTest::newRow("outer blank") << u"Option "_s << u"a"_s << false;
}

void IniTextTest::names()
{
    QFETCH(const QString, section);
    QFETCH(const QString, key);
    QTEST(IniText::canName(section, key), "possible");
}

HARROWBY_CORE_TEST(ini_text_test, IniTextTest)
#include "ini_text_test.moc"
