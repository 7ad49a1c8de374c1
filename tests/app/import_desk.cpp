// SPDX-License-Identifier: MIT
#include "tests/app/import_desk.h"

#include "app/catalogue/import_columns.h"
#include "app/records/deeds.h"
#include "app/records/file_records.h"
#include "basic/store_address.h"
#include "tests/app/store_files.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTest>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

void mustBe(bool isSo, const QString &what)
{
    if (!isSo)
        throw std::runtime_error(what.toStdString());
}

QString filterName(RowFilter state)
{
    const QStringList names = {u"all"_s,     u"new"_s,      u"changed"_s,       u"unchanged"_s,
                               u"refused"_s, u"left out"_s, u"not taken back"_s};
    return names.at(static_cast<int>(state));
}

const auto firstCategory = u"insert into InventoryCategory values ('DRINKS', '2026-01-01 08:00:00')"_s;

/// Made once, and copied for each test.
QString emptyStore()
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(u"empty.db"_s);
    if (!QFile::exists(path)) {
        makeStore(path);
        runAll(path, {u"delete from StockList"_s, u"delete from InventoryCategory"_s, firstCategory,
                      u"pragma journal_mode = delete"_s});
    }
    return path;
}

} // namespace

ImportEnd endOf(const Imported<ImportOutcome> &outcome)
{
    return outcome ? ImportEnd{} : outcome.error();
}

bool goOn(const WorkStep &)
{
    return true;
}

ImportBench::ImportBench() : place(folder.filePath(u"shop.db"_s)), path(place.address())
{
    if (isServer(path)) {
        session = std::make_unique<harrowby::test::ServerSession>(ownersAddress(path));
        session->showNulls(u"(null)"_s);
        sql(firstCategory);
    } else {
        mustBe(QFile::copy(emptyStore(), path), u"no copy of the store"_s);
    }
    auto opened = openStoreRecords(path, Access::Write);
    mustBe(opened.has_value(), u"the store cannot be opened"_s);
    own = *std::move(opened);
    records = &own->records();
    sql(u"pragma synchronous = off"_s); // no test survives a power cut
    desk.user = u"JILL"_s;
    desk.who = u"JILL"_s;
    desk.place = officePlace;
    desk.store = path;
    desk.backupFolder = folder.path();
    desk.now = [] { return QDateTime({2026, 11, 22}, {12, 0, 5}); };
}

sqlite3 *ImportBench::database() const
{
    const auto *file = dynamic_cast<const FileRecords *>(own.get());
    return file != nullptr ? file->database() : nullptr;
}

void ImportBench::sql(const QString &statement) const
{
    if (session)
        return mustBe(session->run(statement), statement + session->message());
    const auto error = runSql(database(), statement);
    mustBe(!error, statement + (error ? error->reason : QString()));
}

QStringList ImportBench::rows(const QString &select) const
{
    if (session) {
        const auto found = session->rows(select);
        mustBe(found.has_value(), select + session->message());
        return *found;
    }
    SqliteStatement query(database(), select);
    QStringList rows;
    while (query.next()) {
        QStringList cells;
        for (int column = 0; column < query.columnNames().size(); ++column) {
            const bool isNull = std::holds_alternative<std::monostate>(query.value(column));
            cells << (isNull ? u"(null)"_s : query.text(column));
        }
        rows << cells.join(u'|');
    }
    mustBe(!query.hasFailed(), select);
    return rows;
}

QStringList ImportBench::items() const
{
    return rows(u"select StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockAvailable, StockUse "
                "from StockList order by StockID"_s);
}

QStringList ImportBench::everything(const QString &table) const
{
    const auto names = rows(u"select name from pragma_table_info('%1')"_s.arg(table));
    QStringList cells;
    for (const QString &name : names)
        cells << u"typeof(%1) || ':' || quote(%1)"_s.arg(name);
    return rows(u"select %1 from %2 order by rowid"_s.arg(cells.join(u", "_s), table));
}

void ImportBench::addItem(const QString &id, const QString &name, const QString &cost, const QString &available,
                          const QString &category) const
{
    sql(u"insert into StockList values ('%1', '%2', '%3', %4, 2, %5, 'Enabled', '01-Jan-26 08:00:00', 'JACK', 'JACK', "
        "'JACK')"_s.arg(id, name, category, cost, available));
}

ImportFile ImportBench::file(const QByteArray &text)
{
    return {u"/shop/catalogue.csv"_s, text,
            QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex())};
}

ImportChoices ImportBench::choicesFor(const QByteArray &text, ImportKind kind)
{
    ImportChoices choices;
    choices.kind = kind;
    choices.columns = matchColumns(kind, headingsOf(text, choices.form));
    return choices;
}

CatalogueImport ImportBench::import()
{
    return CatalogueImport(*records, desk);
}

StagedImport ImportBench::stage(const QByteArray &text)
{
    return stage(text, choicesFor(text));
}

StagedImport ImportBench::stage(const QByteArray &text, const ImportChoices &choices)
{
    const auto staged = import().stage(file(text), choices, goOn);
    mustBe(staged.has_value(), staged ? QString() : staged.error().words);
    last = staged->id;
    return *staged;
}

ImportOutcome ImportBench::importValid(const QByteArray &text)
{
    return importValid(text, choicesFor(text));
}

ImportOutcome ImportBench::importValid(const QByteArray &text, const ImportChoices &choices)
{
    const auto outcome = import().apply(stage(text, choices).id, true, nullptr, goOn);
    mustBe(outcome.has_value(), outcome ? QString() : outcome.error().words);
    return *outcome;
}

QByteArray ImportBench::exported(ExportKind kind) const
{
    const QString target = folder.filePath(u"list.csv"_s);
    const ExportEnd end = exportList(path, target, ExportRequest{kind, {}, {}, {}}, goOn);
    QFile file(target);
    return end.outcome == ExportEnd::Outcome::Done && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList ImportBench::list(std::int64_t id, RowFilter filter)
{
    const auto rows = import().rows(id, filter, 0, 1000);
    mustBe(rows.has_value(), rows ? QString() : rows.error().words);
    QStringList texts;
    for (const ImportedRow &row : *rows) {
        QString text = u"%1 %2 %3"_s.arg(row.line).arg(filterName(row.state), row.key);
        for (const ImportCell &cell : row.cells)
            text += u" %1 %2>%3"_s.arg(cell.column, cell.before, cell.after);
        if (!row.column.isEmpty() || !row.reason.isEmpty())
            text += u" [%1: %2]"_s.arg(row.column, row.reason);
        texts << text;
    }
    return texts;
}

} // namespace harrowby::app::test
