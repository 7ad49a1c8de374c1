// SPDX-License-Identifier: MIT
#include "app/errands/copy_errand.h"

#include "app/backup/store_transfer.h"
#include "app/copy/unfit_words.h"
#include "app/errands/errand.h"
#include "app/start/start_message.h"
#include "basic/store_address.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using How = TransferEnd::Outcome;

constexpr qsizetype mostToldRows = 100;

bool alwaysOn(const WorkStep &)
{
    return true;
}

QString addressOf(const QString &typed)
{
    return isServer(typed) ? typed : QFileInfo(typed).absoluteFilePath();
}

/// "StockList 120, PurchaseCart 3001"
QString countsOf(const TransferEnd &end)
{
    QStringList counts;
    for (const CopiedTable &table : copiedTables()) {
        if (const auto rows = end.rows.value(table.name); rows > 0)
            counts << u"%1 %2"_s.arg(table.name, QString::number(rows));
    }
    return counts.isEmpty() ? u"it holds no rows"_s : counts.join(u", "_s);
}

ExitCode tell(const TransferEnd &end, const QString &from, const QString &to)
{
    switch (end.outcome) {
    case How::Done:
        break;
    case How::NotOpened:
        tellOfErrand(end.problem);
        return ExitCode::StoreRefused;
    case How::RowsRefused:
        tellOfErrand(u"A server cannot hold all rows of this store, so nothing was copied:\n"_s +
                     unfitWords(end.unfit, mostToldRows));
        return ExitCode::RowsRefused;
    default:
        tellOfErrand(end.problem);
        return ExitCode::ErrandFailed;
    }
    for (const QString &left : end.left)
        tellOfErrand(u"Not copied, as it is not the store's own: %1"_s.arg(left));
    printOut(u"The store is copied and compared: %1\n"
             "Sell from %2 from now on. What is in %3 stays as it is; do not sell from it any more.\n"_s.arg(
                 countsOf(end), storeWords(to), storeWords(from)));
    return ExitCode::Done;
}

} // namespace

ExitCode copyStoreWithoutWindow(const ErrandLine &line)
{
    const QString from = addressOf(line.values.at(0));
    const QString to = addressOf(line.values.at(1));
    if (isServer(from) == isServer(to)) {
        tellOfErrand(u"--copy-store copies between a store file and a server, such as service=NAME. For a copy of a "
                     "file take --backup."_s);
        return ExitCode::WrongUsage;
    }
    return tell(isServer(to) ? copyFileToServer(from, to, alwaysOn) : copyServerToFile(from, to, alwaysOn), from, to);
}

} // namespace harrowby::app
