// SPDX-License-Identifier: MIT
#include "bench/report_work.h"

#ifdef HARROWBY_BENCH_REPORT
#include "plugins/report/report_dialog.h"
#include "plugins/report/sales_chart.h"
#include "tables/table_view.h"

#include <harrowby/sqlite_connection.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QEventLoop>

#include <sqlite3.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

/// Waiting for the file system and the like is small beside it, so a few runs do.
constexpr int mostRuns = 7;
constexpr double reportLimit = 2.0;
constexpr double itemReportLimit = 2.5;

/// Notes what the report asks for.
class Recorder final : public DbConnection
{
public:
    explicit Recorder(sqlite3 *database) : m_below(database) {}

    QStringList selects;

    bool Execute(const QString &statement) override { return m_below.Execute(statement); }
    std::unique_ptr<DbCursor> query(const QString &select) override
    {
        selects << select;
        return m_below.query(select);
    }
    std::optional<std::int64_t> countRows(const QString &select) override { return m_below.countRows(select); }
    std::optional<std::vector<DbRowId>> rowIds(const QString &select) override { return m_below.rowIds(select); }
    bool insertRow(const QString &, const DbAssignments &) override { return false; }
    bool updateRow(const QString &, DbRowId, const DbAssignments &) override { return false; }
    [[nodiscard]] QString location() const override { return {}; }

private:
    SqliteConnection m_below;
};

struct Span
{
    QDate first;
    QDate last;
    int days = 0;
};

QDate dayOf(const char *key)
{
    return QDate::fromString(u"20"_s + QString::fromLatin1(key), u"yyyyMMdd"_s);
}

Span spanOf(sqlite3 *database)
{
    Span span;
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database,
                       "select min(substr(PurchasedDate,1,6)), max(substr(PurchasedDate,1,6)),"
                       " count(distinct substr(PurchasedDate,1,6)) from PurchaseCart",
                       -1, &statement, nullptr);
    const auto text = [statement](int column) {
        return reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
    };
    if (sqlite3_step(statement) == SQLITE_ROW && text(0) != nullptr)
        span = {dayOf(text(0)), dayOf(text(1)), sqlite3_column_int(statement, 2)};
    sqlite3_finalize(statement);
    return span;
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

Line measureGrouping(sqlite3 *database, const WorksOptions &options, const Span &span, int grouping, int runs,
                     const QString &name)
{
    const auto connection = std::make_shared<Recorder>(database);
    std::vector<double> samples;
    std::vector<double> rawSamples;
    for (int i = -1; i < runs; ++i) {
        int rows = 0;
        const double ms = timed([&] {
            rows = openReport(connection, span, grouping);
            return rows > 0;
        });
        require(ms >= 0.0 && (grouping != 0 || rows == span.days), name);
        const double raw = checked(timed([&] { return runRaw(database, rawOf(connection->selects)); }), name);
        if (i >= 0) {
            samples.push_back(ms);
            rawSamples.push_back(raw);
        }
    }
    const double plain = median(rawSamples);
    return {name, options.items, median(samples), plain, plain > 0.0 ? median(samples) / plain : 0.0, {}, {}};
}

} // namespace

std::vector<Line> measureReport(sqlite3 *database, const WorksOptions &options)
{
    const Span span = spanOf(database);
    require(span.days > 0, u"the days of the report"_s);
    const int runs = std::min(options.runs, mostRuns);
    Line days = measureGrouping(database, options, span, 0, runs,
                                u"open the report until table and plot of all purchases are painted"_s);
    if (options.items == limitedItems)
        days.limit = reportLimit;
    Line items = measureGrouping(database, options, span, 2, runs, u"  the same by item instead of by day"_s);
    if (options.items == limitedItems)
        items.limit = itemReportLimit;
    return {days, items};
}

} // namespace harrowby::bench

#else

namespace harrowby::bench {

std::vector<Line> measureReport(sqlite3 *, const WorksOptions &)
{
    return {};
}

} // namespace harrowby::bench

#endif
