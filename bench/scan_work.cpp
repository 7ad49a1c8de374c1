// SPDX-License-Identifier: MIT
#include "bench/scan_work.h"

#include "app/records/sqlite_records.h"
#include "app/till/till.h"
#include "basic/item_key.h"
#include "bench/measuring.h"
#include "bench/paint_watch.h"
#include "bench/statement_lists.h"
#include "bench/till.h"
#include "engine/database.h"
#include "ui/widgets/row_list.h"

#include <harrowby/counter.h>

#include <QCoreApplication>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

class ScanDesk::Parts
{
public:
    explicit Parts(sqlite3 *database) :
        m_records(database),
        m_till(Counter::instance(), m_records,
               {[](const QString &, const QString &, const QString &defaultValue) { return defaultValue; }, {}}, [] {})
    {
    }

private:
    app::SqliteRecords m_records;
    app::Till m_till;
};

ScanDesk::ScanDesk(sqlite3 *database, Till &till) : m_database(database), m_till(till)
{
    for (const QString &making : app::kept::code().making)
        require(!runSql(database, making), u"the table of codes"_s);
    require(!runSql(database, u"insert or ignore into HarrowbyCode select printf('%014d', rowid), StockID, 1 "
                              "from StockList"_s),
            u"codes for all items"_s);
    m_parts = std::make_unique<Parts>(database);
    QCoreApplication::processEvents(); // the banner is painted
}

ScanDesk::~ScanDesk() = default;

QString ScanDesk::codeOf(const QString &key) const
{
    return readText(m_database, u"select Code from HarrowbyCode where StockID = ?1"_s, {GetIDName(key, KeyPiece::Id)});
}

bool ScanDesk::scan(const QString &code)
{
    const Controls &controls = m_till.window().controls();
    PaintWatch watch{controls.LV3->viewport(), controls.Label5};
    Q_EMIT Counter::instance().codeRead(code);
    return watch.wait();
}

RawStatements ScanDesk::statements(const QString &code, const QString &key, const QDateTime &now)
{
    return RawStatements{{"select StockID, StockName, StockCost from StockList where StockID in (?)",
                          {"StockID", "StockName"},
                          {code.toUtf8()}},
                         {"select c.StockID, c.Units, s.StockName from HarrowbyCode c "
                          "left join StockList s on s.StockID = c.StockID where c.Code in (?)",
                          {"StockID", "Units", "StockName"},
                          {code.toUtf8()}}} +
           pressStatements(key, now);
}

} // namespace harrowby::bench
