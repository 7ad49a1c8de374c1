// SPDX-License-Identifier: MIT
#include "bench/resident.h"

#include "bench/paint_watch.h"
#include "bench/server_works.h"
#include "bench/shop_file.h"
#include "bench/till.h"

#include <QCoreApplication>
#include <QFile>
#include <QMainWindow>
#include <QProcess>
#include <QTextStream>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

/// 0 when the system does not tell.
qint64 residentKilobytes()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).simplified().split(' ').constFirst().toLongLong();
    }
    return 0;
}

double megabytesOf(const QStringList &arguments)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), arguments);
    const bool finished = process.waitForFinished(60'000) && process.exitCode() == 0;
    const double kilobytes = process.readAllStandardOutput().trimmed().toDouble();
    if (!finished || kilobytes <= 0.0)
        throw std::runtime_error("A process did not tell its memory: " + process.readAllStandardError().toStdString());
    return kilobytes / 1024.0;
}

bool tell()
{
    QTextStream(stdout) << residentKilobytes() << Qt::endl;
    return true;
}

/// libpq's words have one of these, and no path that begins with a slash does.
bool isServer(const QString &shop)
{
    return !shop.startsWith(u'/') && shop.contains(u'=');
}

bool tellOfTill(const QString &shop, bool withStockList)
{
    const std::unique_ptr<MeasuredStore> store = isServer(shop) ? serverShop(shop) : std::make_unique<ShopFile>(shop);
    Till till(*store, benchTime());
    return till.open() && till.logIn() && (!withStockList || till.loadStockList()) && tell();
}

bool tellOfEmptyWindow()
{
    QMainWindow window;
    window.resize(1024, 768);
    PaintWatch watch{&window};
    window.show();
    return watch.wait() && tell();
}

} // namespace

double residentMegabytesOverEmptyWindow(const QString &window, const QString &shop)
{
    return megabytesOf({u"--resident"_s, window, shop}) -
           megabytesOf({u"--resident"_s, QString::fromLatin1(emptyWindow)});
}

int printResident(const QString &window, const QString &shop)
{
    const bool empty = window == QLatin1StringView(emptyWindow);
    const bool told = empty ? tellOfEmptyWindow() : tellOfTill(shop, window == QLatin1StringView(tillWithStockList));
    return told ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace harrowby::bench
