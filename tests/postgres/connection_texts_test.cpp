// SPDX-License-Identifier: MIT
#include "tests/postgres/server_fixture.h"
#include "tests/program/test_program.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QTest>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;
using Outcome = DbRecordset::Outcome;

/// What a person types stays a text, whatever it looks like.
class ConnectionTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_server->refill(); }
    void textsAreNeverStatements_data();
    void textsAreNeverStatements();

private:
    std::unique_ptr<ServerFixture> m_server;
};

void ConnectionTextsTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_server = std::make_unique<ServerFixture>();
}

void ConnectionTextsTest::textsAreNeverStatements_data()
{
    QTest::addColumn<QString>("text");
    int row = 0;
    for (const QString &text :
         {u"'; drop table harrowby.StockList; --"_s, u"\\'; drop table harrowby.StockList; --"_s, u"x' or 'a'='a"_s,
          u"$$; drop table harrowby.StockList; $$"_s, u"$1 ? :1 %s %1"_s, u"E'\\x27' U&'\\0027'"_s, u"/* ' */ -- \n'"_s,
          u"a\r\n\tb\\"_s, u"\u02bc\u2019\uff07"_s, u"\u202e\u2066ab"_s, u"\U0001F34B e\u0301"_s})
        QTest::addRow("%d", ++row) << text;
}

/// Through every way in which the component hands a text on: a row's value, an UPDATE, the log, a look-up, a search.
void ConnectionTextsTest::textsAreNeverStatements()
{
    QFETCH(const QString, text);
    PostgresOptions wanted = m_server->options();
    wanted.findsAnywhere = [] { return true; };
    const auto connection = std::make_shared<PostgresConnection>(m_server->cluster.conninfo(), wanted);
    connection->setFailureHandler([this](const DbFailure &failure) { m_server->failures.push_back(failure); });
    DbRecordset row;
    row.Open(statements::stockById(u"1"_s), connection, Access::Edit);
    row.Field(u"StockName"_s).assign(text);
    QCOMPARE(row.Update(), Outcome::Written);
    QVERIFY(connection->Execute(u"Update StockList SET StockCategory = '%1' where StockName = '%1'"_s.arg(
        QString(text).replace(u'\'', u"''"_s))));
    row.Open(statements::stockById(u"1"_s), connection);
    QCOMPARE(row.Field(u"StockName"_s).text(), text);
    QCOMPARE(row.Field(u"StockCategory"_s).text(), text);
    if (!text.contains(u'\'')) { // the component hands on no text with one
        QVERIFY(Execute(connection, statements::usage(text, u"t"_s, u"d"_s)));
        QVERIFY(Execute(connection, statements::addCategory(text, u"d"_s)));
        row.Open(statements::availableStock(u"1"_s, text), connection);
        QCOMPARE(row.RecordCount(), 1);
        row.Open(statements::searchStock(text.toUpper()), connection, Access::Walk);
        QCOMPARE(row.RecordCount(), 1);
    }
    QCOMPARE(m_server->cluster.sql(u"select count(*) from harrowby.StockList"_s), QStringList{u"3"_s});
    QVERIFY(m_server->failures.empty());
}

HARROWBY_CORE_TEST(connection_texts_test, ConnectionTextsTest)
#include "connection_texts_test.moc"
