// SPDX-License-Identifier: MIT
#include "bench/activity_work.h"
#include "bench/catalogue.h"
#include "bench/counter_works.h"
#include "bench/exchange_works.h"
#include "bench/hold_works.h"
#include "bench/report.h"
#include "bench/report_work.h"
#include "bench/resident.h"
#include "bench/server_works.h"
#include "bench/shop_file.h"
#include "bench/works.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTextStream>

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby::bench;

namespace {

constexpr double residentLimitMb = 40.0;
constexpr double stockListLimitMb = 120.0;
constexpr double pressGrowthLimit = 2.0;
constexpr double listGrowthLimit = 12.0;

struct Plan
{
    CatalogueSize tenth; ///< the shop that the filling of the stock list is compared with
    std::vector<CatalogueSize> sizes;
    int runs = 0;
    bool counterOnly = false;
    bool reportOnly = false;
    bool officeOnly = false;
    bool serverOnly = false;
    qint64 comparedAt = 0;                ///< items of the shop in which growth and memory are measured
    std::optional<CatalogueSize> frame;   ///< the shop in which a press and a scan must end within a frame
    CatalogueSize office = {100'000, 10}; ///< the shop whose lists are imported and exported
    int officeRuns = 5;
};

Plan quickPlan()
{
    Plan plan;
    plan.tenth = {200, 100};
    plan.sizes = {{1'000, 10'000}, {2'000, 10'000}};
    plan.runs = 1;
    plan.comparedAt = 2'000;
    plan.frame = CatalogueSize{2'000, 100};
    plan.office = {2'000, 10};
    plan.officeRuns = 1;
    return plan;
}

Plan usualPlan(const QCommandLineParser &options)
{
    Plan plan;
    plan.tenth = {10'000, 1'000};
    plan.sizes = {{1'000, 1'000'000}, {100'000, 1'000'000}};
    plan.runs = std::max(1, options.value(u"runs"_s).toInt());
    plan.comparedAt = 100'000;
    if (options.isSet(u"million"_s))
        plan.sizes.push_back({1'000'000, 1'000'000});
    else if (!options.isSet(u"counter"_s) && !options.isSet(u"report"_s))
        plan.frame = CatalogueSize{1'000'000, 1'000};
    return plan;
}

Plan planFor(const QCommandLineParser &options)
{
    Plan plan = options.isSet(u"quick"_s) ? quickPlan() : usualPlan(options);
    plan.counterOnly = options.isSet(u"counter"_s);
    plan.reportOnly = options.isSet(u"report"_s);
    plan.officeOnly = options.isSet(u"office"_s);
    plan.serverOnly = options.isSet(u"server"_s);
    return plan;
}

void say(const QString &text)
{
    QTextStream(stderr) << text << Qt::endl;
}

/// Makes the shops that a plan needs, and measures in them.
class Measurement
{
public:
    Measurement(Plan plan, QString folder) : m_plan(std::move(plan)), m_folder(std::move(folder)) {}

    std::vector<Line> run();

private:
    std::unique_ptr<ShopFile> makeShop(const CatalogueSize &size) const;
    [[nodiscard]] QString fileOf(const CatalogueSize &size) const;
    void add(const std::vector<Line> &lines) { m_lines.insert(m_lines.end(), lines.begin(), lines.end()); }
    void add(Line line, double limit);
    void addResident(const QString &name, const char *window, const CatalogueSize &size, double limitMb);
    void addOffice();
    void addServer();
    void compare(ShopFile &smallest, ShopFile &shop, const CatalogueSize &size);

    Plan m_plan;
    QString m_folder;
    QDateTime m_now = benchTime();
    std::vector<Line> m_lines;
};

/// Lists into the store and out of it, and what happened there, in a shop of their own: they change all of it.
void Measurement::addOffice()
{
    const CatalogueSize &size = m_plan.office;
    const std::unique_ptr<ShopFile> shop = makeShop(size);
    say(u"Measuring the office, %1 runs each ..."_s.arg(m_plan.officeRuns));
    add(measureExchange(fileOf(size), *shop, size.items, m_plan.officeRuns));
    add(measureActivity(*shop, qint64{10} * size.items, m_plan.officeRuns));
}

/// The counter's lines on a private server.
void Measurement::addServer()
{
    const CatalogueSize &size = m_plan.sizes.back();
    const std::unique_ptr<ShopFile> shop = makeShop(size);
    add(measureServer(*shop, {size.items, m_plan.runs, m_now}));
}

std::vector<Line> Measurement::run()
{
    if (m_plan.serverOnly) {
        addServer();
        return m_lines;
    }
    if (m_plan.officeOnly) {
        addOffice();
        return m_lines;
    }
    std::vector<std::unique_ptr<ShopFile>> shops;
    for (const CatalogueSize &size : m_plan.sizes) {
        ShopFile &shop = *shops.emplace_back(makeShop(size));
        say(u"Measuring, %1 runs each ..."_s.arg(m_plan.runs));
        const WorksOptions options{size.items, m_plan.runs, m_now};
        if (!m_plan.counterOnly && !m_plan.reportOnly)
            add(measureWorks(shop, options));
        if (size.items == m_plan.comparedAt && !m_plan.reportOnly)
            compare(*shops.front(), shop, size);
        if (!m_plan.reportOnly)
            add(measureCounter(shop, options));
        if (!m_plan.reportOnly)
            add(measureHold(shop, options));
        add(measureReport(shop, options));
    }
    if (m_plan.frame)
        add(measureWithinFrame(*makeShop(*m_plan.frame), {m_plan.frame->items, m_plan.runs, m_now}));
    if (!m_plan.counterOnly && !m_plan.reportOnly)
        addOffice();
    return m_lines;
}

QString Measurement::fileOf(const CatalogueSize &size) const
{
    return m_folder + u"/shop-%1-%2.sqlite"_s.arg(size.items).arg(size.purchases);
}

std::unique_ptr<ShopFile> Measurement::makeShop(const CatalogueSize &size) const
{
    say(u"Making a shop of %1 items and %2 purchases ..."_s.arg(size.items).arg(size.purchases));
    auto shop = std::make_unique<ShopFile>(fileOf(size));
    shop->fill(size, m_now.date());
    return shop;
}

void Measurement::add(Line line, double limit)
{
    line.limit = limit;
    m_lines.push_back(std::move(line));
}

void Measurement::addResident(const QString &name, const char *window, const CatalogueSize &size, double limitMb)
{
    Line line{name, size.items, {}, {}, {}, {}, {}};
    line.megabytes = residentMegabytesOverEmptyWindow(QString::fromLatin1(window), fileOf(size));
    if (size.items == limitedItems)
        line.limit = limitMb;
    m_lines.push_back(std::move(line));
}

void Measurement::compare(ShopFile &smallest, ShopFile &shop, const CatalogueSize &size)
{
    addResident(u"resident memory, logged in, over an empty Qt window"_s, loggedInTill, size, residentLimitMb);
    addResident(u"the same with the stock list filled"_s, tillWithStockList, size, stockListLimitMb);
    const WorksOptions options{size.items, m_plan.runs, m_now};
    add(measurePressGrowth(smallest, shop, options), pressGrowthLimit);
    const std::unique_ptr<ShopFile> tenth = makeShop(m_plan.tenth);
    add(measureListGrowth(*tenth, shop, options), listGrowthLimit);
}

void writeJson(const QString &path, const std::vector<Line> &lines)
{
    QFile file(path);
    const QByteArray text = QJsonDocument(toJson(lines)).toJson();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text) != text.size())
        throw std::runtime_error(("Cannot write "_L1 + path).toStdString());
}

void addOptions(QCommandLineParser &options)
{
    options.setApplicationDescription(
        u"Measures the till against the same statements run through the engine's own interface."_s);
    options.addHelpOption();
    options.addOption({u"json"_s, u"Writes the figures to this file too."_s, u"file"_s});
    options.addOption({u"runs"_s, u"Runs of each piece of work."_s, u"number"_s, u"31"_s});
    options.addOption({u"quick"_s, u"Small shops and few runs, to see that it works."_s});
    options.addOption({u"counter"_s, u"Leaves out what sells: stock, custom sale, undo and deletion alone."_s});
    options.addOption({u"report"_s, u"The sales report alone."_s});
    options.addOption({u"office"_s, u"The office's lists and its search alone."_s});
    options.addOption({u"server"_s, u"The counter on private PostgreSQL servers of this machine."_s});
    options.addOption({u"million"_s, u"Measures everything at 1,000,000 items as well."_s});
    options.addOption({u"keep"_s, u"Makes the shops in this empty folder and leaves them there."_s, u"folder"_s});
    QCommandLineOption resident(u"resident"_s, {}, u"window"_s);
    resident.setFlags(QCommandLineOption::HiddenFromHelp);
    options.addOption(resident);
}

int measureAndReport(const QCommandLineParser &options)
{
    const QTemporaryDir folder(QCoreApplication::applicationDirPath() + u"/bench-XXXXXX"_s);
    if (!folder.isValid())
        throw std::runtime_error(folder.errorString().toStdString());
    const QString kept = options.value(u"keep"_s);
    const std::vector<Line> lines = Measurement(planFor(options), kept.isEmpty() ? folder.path() : kept).run();
    QTextStream(stdout) << toText(lines);
    if (options.isSet(u"json"_s))
        writeJson(options.value(u"json"_s), lines);
    return EXIT_SUCCESS;
}

/// A till's usual screen: the headless one is narrower, and the window would measure its way of fitting it.
void chooseScreen(QTemporaryFile &screen)
{
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return;
    QByteArray platform = "offscreen";
    if (screen.open() && screen.write(R"({"screens": [{"name": "till", "x": 0, "y": 0, "width": 1024, "height": 768,
        "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})") > 0 &&
        screen.flush())
        platform += ":configfile=" + QFile::encodeName(screen.fileName());
    qputenv("QT_QPA_PLATFORM", platform);
}

} // namespace

int main(int argc, char **argv)
{
    QTemporaryFile screen;
    chooseScreen(screen);
    // What the platform without a screen cannot do is no news here.
    if (!qEnvironmentVariableIsSet("QT_LOGGING_RULES"))
        qputenv("QT_LOGGING_RULES", "default.warning=false");
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser options;
    addOptions(options);
    options.process(app);
    try {
        if (options.isSet(u"resident"_s))
            return printResident(options.value(u"resident"_s), options.positionalArguments().value(0));
        return measureAndReport(options);
    } catch (const std::exception &error) {
        say(QString::fromStdString(error.what()));
        return EXIT_FAILURE;
    }
}
