// SPDX-License-Identifier: MIT
#include "bench/report_work.h"

#ifdef HARROWBY_BENCH_REPORT
#include "plugins/report/report_dialog.h"
#include "plugins/report/sales_chart.h"
#include "tables/table_view.h"

#include <harrowby/db_connection.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QEventLoop>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

/// Waiting for the file system and the like is small beside it, so a few runs do.
constexpr int mostRuns = 7;
constexpr Limits reportLimits{{2.0, 0.0}};
constexpr Limits itemReportLimits{{2.5, 0.0}, walkOnServer};

/// Notes what the report asks for.
class Recorder final : public DbConnection
{
public:
    explicit Recorder(std::shared_ptr<DbConnection> below) : m_below(std::move(below)) {}

    QStringList selects;

    bool Execute(const QString &statement) override { return m_below->Execute(statement); }
    std::unique_ptr<DbCursor> query(const QString &select) override
    {
        selects << select;
        return m_below->query(select);
    }
    std::unique_ptr<DbCursor> queryAs(const QString &select, DbReading how) override
    {
        selects << select;
        return m_below->queryAs(select, how);
    }
    std::optional<std::int64_t> countRows(const QString &select) override { return m_below->countRows(select); }
    std::optional<std::vector<DbRowId>> rowIds(const QString &select) override { return m_below->rowIds(select); }
    bool insertRow(const QString &, const DbAssignments &) override { return false; }
    bool updateRow(const QString &, DbRowId, const DbAssignments &) override { return false; }
    [[nodiscard]] QString location() const override { return {}; }

private:
    std::shared_ptr<DbConnection> m_below;
};

struct Span
{
    QDate first;
    QDate last;
    int days = 0;
};

QDate dayOf(const DbValue &key)
{
    const auto *text = std::get_if<QString>(&key);
    return text == nullptr ? QDate() : QDate::fromString(u"20"_s + *text, u"yyyyMMdd"_s);
}

Span spanOf(DbConnection &connection)
{
    const auto rows = connection.query(u"select min(substr(PurchasedDate,1,6)), max(substr(PurchasedDate,1,6)),"
                                       " count(distinct substr(PurchasedDate,1,6)) from PurchaseCart"_s);
    if (!rows || rows->next() != DbCursor::Step::Row)
        return {};
    const DbValue days = rows->value(2);
    const auto *number = std::get_if<std::int64_t>(&days);
    return {dayOf(rows->value(0)), dayOf(rows->value(1)), number ? static_cast<int>(*number) : 0};
}

report::ReportFrame frameFor(const QDate &today)
{
    report::ReportFrame frame;
    frame.user = u"ADMINISTRATOR"_s;
    frame.canSettings = true;
    frame.today = [today] { return today; };
    frame.emailReport = [] { return true; };
    frame.saveEmailReport = [](bool) { return true; };
    return frame;
}

/// Opens the report over the days, and waits until its table and plot are painted. The number of rows in the table.
int openReport(const std::shared_ptr<Recorder> &connection, const Span &span, int grouping)
{
    connection->selects.clear();
    report::ReportDialog dialog(connection, frameFor(span.last));
    dialog.findChild<QComboBox *>(u"grouping"_s)->setCurrentIndex(grouping);
    dialog.findChild<QDateEdit *>(u"to"_s)->setDate(span.last);
    dialog.findChild<QDateEdit *>(u"from"_s)->setDate(span.first);
    dialog.show();
    QEventLoop waiting;
    QObject::connect(&dialog, &report::ReportDialog::shown, &waiting, &QEventLoop::quit);
    waiting.exec();
    dialog.repaint();
    dialog.chart().repaint();
    dialog.table().repaint();
    return dialog.table().model()->rowCount();
}

RawStatements rawOf(const QStringList &selects)
{
    const QByteArrayList columns = {"substr(PurchasedDate,1,6)", "Users",          "count(*)",
                                    "total(PurchasedItemsCost)", "PurchasedItems", "PurchasedItemsCost"};
    RawStatements raw;
    for (const QString &select : selects)
        raw.push_back({select.toUtf8(), columns, {}});
    return raw;
}

Line measureGrouping(MeasuredStore &store, const WorksOptions &options, const Span &span, int grouping,
                     const Limits &limits, const QString &name)
{
    const auto connection = std::make_shared<Recorder>(store.connect());
    BesideRaw times;
    for (int i = -1; i < std::min(options.runs, mostRuns); ++i) {
        int rows = 0;
        const double ms = timed([&] {
            rows = openReport(connection, span, grouping);
            return rows > 0;
        });
        require(ms >= 0.0 && (grouping != 0 || rows == span.days), name);
        const double raw = checked(store.rawMs(rawOf(connection->selects)), name);
        if (i >= 0) {
            times.add(ms, raw);
        }
    }
    return times.line(name, options.items, store.isServer() ? limits.onServer : limits.onFile);
}

} // namespace

std::vector<Line> measureReport(MeasuredStore &store, const WorksOptions &options)
{
    const Span span = spanOf(*store.connect());
    require(span.days > 0, u"the days of the report"_s);
    return {measureGrouping(store, options, span, 0, reportLimits,
                            u"open the report until table and plot of all purchases are painted"_s),
            measureGrouping(store, options, span, 2, itemReportLimits, u"  the same by item instead of by day"_s)};
}

} // namespace harrowby::bench

#else

namespace harrowby::bench {

std::vector<Line> measureReport(MeasuredStore &, const WorksOptions &)
{
    return {};
}

} // namespace harrowby::bench

#endif
