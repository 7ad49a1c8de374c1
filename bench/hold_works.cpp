// SPDX-License-Identifier: MIT
#include "bench/hold_works.h"

#include "app/hold/cart_holder.h"
#include "app/records/records.h"
#include "basic/item_key.h"
#include "bench/paint_watch.h"
#include "bench/statement_lists.h"
#include "store/statement_texts.h"
#include "ui/widgets/row_list.h"

#include <QLabel>

#include <harrowby/counter.h>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

constexpr int linesHeld = 50;
const QString heldAs = u"BENCH"_s;

RawStatement raw(const char *sql, const QByteArrayList &values = {}, const QByteArrayList &columns = {})
{
    return {sql, columns, values};
}

RawStatements holdStatements(const QStringList &keys)
{
    RawStatements list{raw("begin immediate"),
                       raw("select HeldID, Word, HeldAt, HeldBy, HeldLines, Total from HarrowbyHeld order by HeldAt, "
                           "HeldID",
                           {}, {"HeldID", "Word", "HeldAt", "HeldBy", "HeldLines", "Total"})};
    for (qsizetype i = 0; i < keys.size(); ++i)
        list.push_back(raw("insert into HarrowbyHeldLine (HeldID, Position, StockID, StockName, Quantity, Cost, "
                           "CostByHand) values (?, ?, ?, ?, ?, ?, ?)",
                           {"raw", QByteArray::number(i + 1), GetIDName(keys.at(i), KeyPiece::Id).toUtf8(),
                            GetIDName(keys.at(i), KeyPiece::Name).toUtf8(), "1", "4.5", "0"}));
    list.push_back(raw("insert into HarrowbyHeld (HeldID, Word, HeldAt, HeldBy, HeldLines, Total) "
                       "values (?, ?, ?, ?, ?, ?)",
                       {"raw", "RAW", "2026-03-05T12:00:00.000Z", "JACK", "50", "225"}));
    list.push_back(raw("commit"));
    return list;
}

RawStatements recallStatements(const QStringList &keys, const QDateTime &now)
{
    RawStatements list{raw("begin immediate"), raw("delete from HarrowbyHeld where HeldID = ?", {"raw"}),
                       raw("select StockID, StockName, Quantity, Cost, CostByHand from HarrowbyHeldLine "
                           "where HeldID = ? order by Position",
                           {"raw"}, {"StockID", "StockName", "Quantity", "Cost", "CostByHand"}),
                       raw("delete from HarrowbyHeldLine where HeldID = ?", {"raw"})};
    for (const QString &key : keys) {
        list.push_back(readRows(statements::stockById(GetIDName(key, KeyPiece::Id)),
                                {"StockID", "StockName", "StockUse", "StockAvailable", "StockCost"}));
        list.push_back(usageRow(u"1 of "_s + key + u" Added to Cart!"_s, now));
    }
    list.push_back(raw("commit"));
    return list;
}

class HoldBench
{
public:
    HoldBench(MeasuredStore &store, const WorksOptions &options) :
        m_store(store), m_till(store, options.now), m_measuring(store, options, m_till), m_records(store.records())
    {
    }

    std::vector<Line> run();

private:
    bool hold();
    void chooseHeld();
    bool recall();
    void dropRaw();

    MeasuredStore &m_store;
    Till m_till;
    Measuring m_measuring;
    std::unique_ptr<app::Records> m_records;
    app::HeldCarts m_carts{*m_records};
    app::CartHolder m_holder{harrowby::Counter::instance(), m_carts};
    QStringList m_keys;
    app::HeldCart m_chosen; ///< to be recalled
};

bool HoldBench::hold()
{
    PaintWatch watch{m_till.window().controls().LV3->viewport(), m_till.window().controls().Label5};
    return m_holder.hold(heldAs) == app::CartHolder::Held::Done && watch.wait() && m_till.cartLines() == 0;
}

/// As the list shows it, from which it is chosen.
void HoldBench::chooseHeld()
{
    const auto carts = m_carts.list();
    require(carts && !carts->isEmpty() && carts->constLast().word == heldAs, u"the list of held carts"_s);
    m_chosen = carts->constLast();
}

bool HoldBench::recall()
{
    PaintWatch watch{m_till.window().controls().LV3->viewport(), m_till.window().controls().Label5};
    std::vector<CounterMisfit> misfits;
    return m_holder.recall(m_chosen, misfits) == app::HeldCarts::Taken::Done && watch.wait() && misfits.empty() &&
           m_till.cartLines() == linesHeld;
}

/// What the statements by hand have held.
void HoldBench::dropRaw()
{
    checked(m_store.rawMs({raw("delete from HarrowbyHeld where HeldID = ?", {"raw"}),
                           raw("delete from HarrowbyHeldLine where HeldID = ?", {"raw"})}),
            u"emptying the list of held carts"_s);
}

std::vector<Line> HoldBench::run()
{
    require(m_till.openAfresh() && m_till.fillCart(linesHeld), u"filling the cart"_s);
    m_keys = m_till.keysInCart();
    require(hold(), u"the first hold"_s); // makes the tables
    m_measuring.measure(
        u"hold a cart of 50 lines until the empty one is painted"_s, {{1.5, 2.0}},
        [this] { return timed([this] { return hold(); }); }, [this] { return holdStatements(m_keys); },
        [this] {
            dropRaw();
            if (m_till.cartLines() > 0)
                return;
            chooseHeld();
            require(recall(), u"recall"_s);
        });
    const auto heldAgain = [this] {
        dropRaw();
        checked(m_store.rawMs(holdStatements(m_keys)), u"hold by hand"_s);
        require(m_till.cartLines() == 0 || hold(), u"hold"_s);
        chooseHeld();
    };
    m_measuring.measure(
        u"recall it until cart and total are painted"_s, {{1.5, 2.0}},
        [this] { return timed([this] { return recall(); }); },
        [this] { return recallStatements(m_keys, m_till.now()); }, heldAgain);
    dropRaw();
    require(recall(), u"the last recall"_s); // the store may be measured again
    return m_measuring.lines();
}

} // namespace

std::vector<Line> measureHold(MeasuredStore &store, const WorksOptions &options)
{
    (void)harrowby::Counter::instance(); // before the window that it is to know
    return HoldBench(store, options).run();
}

} // namespace harrowby::bench
