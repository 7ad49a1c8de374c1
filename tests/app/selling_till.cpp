// SPDX-License-Identifier: MIT
#include "tests/app/selling_till.h"

#include "tests/app/store_files.h"
#include "tests/doubles/database.h"
#include "tests/support/till.h"

#include <QFile>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

using harrowby::test::Till;

void makeSellingStore(const QString &path, int items)
{
    makeStore(path);
    QStringList all = {u"DELETE FROM StockList"_s,
                       u"INSERT INTO Users VALUES ('JACK', 'PASS', 'USER', -1, -1, -1, -1, -1, -1, -1)"_s};
    for (int item = 0; item < items; ++item)
        all << u"INSERT INTO StockList VALUES ('A%1', 'NAME OF A%1', 'KIND', 1.5, 1, %2, 'Enabled', '', '', '', '')"_s
                   .arg(item)
                   .arg(stockOfEach);
    runAll(path, all);
}

int sellUntil(const QString &path, const QString &end)
{
    Till till(path, Till::Pace::Hurried);
    till.logIn(u"JACK"_s, u"PASS"_s);
    QRandomGenerator random(1);
    while (!QFile::exists(end)) {
        till.sell(random);
        harrowby::test::say(u"SOLD"_s);
    }
    return 0;
}

int unitsSold(const QString &path)
{
    int units = 0;
    for (const QString &row : harrowby::test::Database(path).rows(u"SELECT PurchasedItems FROM PurchaseCart"_s)) {
        for (const QString &line : row.split(u", "_s))
            units += line.section(u" x "_s, 0, 0).toInt();
    }
    return units;
}

QByteArray allSaid(const harrowby::test::ForkedProcess &process)
{
    QByteArray said;
    for (QByteArray more = process.read(); !more.isEmpty(); more = process.read())
        said += more;
    return said;
}

int wanted(const char *name, int usual)
{
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue(name, &isGiven);
    return isGiven ? given : usual;
}

} // namespace harrowby::app::test
