// SPDX-License-Identifier: MIT
// A host that sells what is scanned, by the exact ID: codes_host STORE TOLD GAP [PREFIX]. What it is told of codes, and
// what came of each, goes into the file TOLD, a line each.
#include <harrowby/counter.h>
#include <harrowby/init.h>
#include <harrowby/sqlite_connection.h>

#include <QApplication>
#include <QFile>

#include <sqlite3.h>

#include <memory>

int main(int argc, char **argv)
{
    using namespace harrowby;
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 4)
        return 2;
    sqlite3 *database = nullptr;
    QFile told(arguments[2]);
    if (sqlite3_open(arguments[1].toUtf8().constData(), &database) != SQLITE_OK || !told.open(QIODevice::WriteOnly))
        return 1;
    const auto tell = [&told](const QString &line) {
        told.write(line.toUtf8() + '\n');
        told.flush();
    };
    Init().LoadInventory(std::make_shared<SqliteConnection>(database), {});
    Counter *counter = &Counter::instance();
    QObject::connect(counter, &Counter::codeRead, counter, [&](const QString &code) {
        const CounterAnswer answer = counter->sell(code);
        if (answer == CounterAnswer::Unknown)
            counter->codeNotKnown();
        tell(code + u' ' + QString::number(static_cast<int>(answer)));
    });
    QObject::connect(counter, &Counter::codeRefused, counter, [&](Counter::CodeRefusal why) {
        tell(QStringLiteral("refused ") + QString::number(static_cast<int>(why)));
    });
    CodeReaderSettings settings;
    settings.longestGapMs = arguments[3].toInt();
    settings.prefix = arguments.value(4);
    counter->takeCodes(settings);
    return QApplication::exec();
}
