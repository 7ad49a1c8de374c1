// SPDX-License-Identifier: MIT
#include "tests/plugins/report/shop.h"

#include "app/shop/schema.h"

#include <harrowby/sqlite_connection.h>

#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::report::test {

Shop::Shop()
{
    QCOMPARE(sqlite3_open(":memory:", &m_database), SQLITE_OK);
    QVERIFY(!app::createTables(m_database));
    QVERIFY(app::createMissingIndexes(m_database));
    m_connection =
        std::make_shared<harrowby::test::RecordingConnection>(std::make_shared<SqliteConnection>(m_database));
}

Shop::~Shop()
{
    sqlite3_close(m_database);
}

bool Shop::run(const QString &statements) const
{
    return sqlite3_exec(m_database, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

void Shop::sell(const QString &date, const QString &user, double cost, const QString &items) const
{
    const auto literal = [](QString text) { return u'\'' + text.replace(u'\'', u"''"_s) + u'\''; };
    QVERIFY(run(u"INSERT INTO PurchaseCart VALUES ('HV', %1, 1, %2, %3, %4)"_s.arg(
        literal(items), QString::number(cost, 'f', 2), literal(date), literal(user))));
}

void Shop::sellMany(int count, int perDay, const QDate &firstDay) const
{
    QVERIFY(run(u"WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i + 1 < %1)"
                " INSERT INTO PurchaseCart SELECT 'HV' || i,"
                " '1 x ART-' || (i % 50) || '  |  ARTICLE ' || (i % 50) || ' = 1.50', 1, 1.5,"
                " strftime('%Y%m%d', '%3', '+' || (i / %2) || ' days'), 'S' || (i % 5) FROM n"_s.arg(count)
                    .arg(perDay)
                    .arg(firstDay.toString(Qt::ISODate))));
    QVERIFY(run(u"UPDATE PurchaseCart SET PurchasedDate = substr(PurchasedDate, 3) || '120000'"
                " WHERE length(PurchasedDate) = 8"_s));
}

} // namespace harrowby::report::test
