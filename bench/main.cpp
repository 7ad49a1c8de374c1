// SPDX-License-Identifier: MIT
#include "bench/catalogue.h"
#include "bench/report.h"
#include "bench/resident.h"
#include "bench/shop_file.h"
#include "bench/works.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <exception>

using namespace Qt::StringLiterals;
using namespace harrowby::bench;

namespace {

constexpr double ResidentLimitMb = 40.0;
constexpr double GrowthLimit = 2.0;

struct Plan
{
    std::vector<CatalogueSize> sizes;
    int runs = 0;
    qint64 residentAt = 0; ///< items of the shop in which the memory is measured
};

Plan planFor(const QCommandLineParser &options)
{
    if (options.isSet(u"quick"_s))
        return {{{1'000, 10'000}, {10'000, 20'000}}, 5, 10'000};
    const int runs = std::max(1, options.value(u"runs"_s).toInt());
    Plan plan{{{1'000, 1'000'000}, {100'000, 1'000'000}}, runs, 100'000};
    if (options.isSet(u"million"_s))
        plan.sizes.push_back({1'000'000, 1'000'000});
    return plan;
}

void say(const QString &text)
{
    QTextStream(stderr) << text << Qt::endl;
}

Line residentLine(const QString &file, qint64 items)
{
    return {u"resident memory, logged in, over an empty Qt window"_s,
            items,
            {},
            {},
            {},
            items == 100'000 ? std::optional(ResidentLimitMb) : std::nullopt,
            residentMegabytesOverEmptyWindow(file)};
}

std::vector<Line> measureAll(const Plan &plan, const QString &folder)
{
    std::vector<Line> lines;
    std::vector<std::unique_ptr<ShopFile>> shops;
    const QDateTime now = benchTime();
    for (const CatalogueSize &size : plan.sizes) {
        const QString file = folder + u"/shop-%1.sqlite"_s.arg(size.items);
        say(u"Making a shop of %1 items and %2 purchases ..."_s.arg(size.items).arg(size.purchases));
        const ShopFile &shop = *shops.emplace_back(std::make_unique<ShopFile>(file));
        shop.fill(size, now.date());
        say(u"Measuring, %1 runs each ..."_s.arg(plan.runs));
        const std::vector<Line> measured = measureWorks(shop.database(), {size.items, plan.runs, now});
        lines.insert(lines.end(), measured.begin(), measured.end());
        if (size.items == plan.residentAt) {
            lines.push_back(residentLine(file, size.items));
            lines.push_back(
                measurePressGrowth(shops.front()->database(), shop.database(), {size.items, plan.runs, now}));
            lines.back().limit = GrowthLimit;
        }
    }
    return lines;
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
    options.addOption({u"million"_s, u"Measures at 1,000,000 items as well."_s});
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
    const std::vector<Line> lines = measureAll(planFor(options), kept.isEmpty() ? folder.path() : kept);
    QTextStream(stdout) << toText(lines);
    if (options.isSet(u"json"_s))
        writeJson(options.value(u"json"_s), lines);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
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
