// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/export/export.h"
#include "app/records/store_records.h"
#include "tests/app/shop_place.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace harrowby::app::test {

/// A store without items, and an office that imports files into it.
class ImportBench
{
public:
    ImportBench();

    /// Runs a statement on the store.
    void sql(const QString &statement) const;
    /// All rows, columns joined by "|", a null as "(null)".
    [[nodiscard]] QStringList rows(const QString &select) const;
    /// All items: ID|name|category|cost|level|available|use, by ID.
    [[nodiscard]] QStringList items() const;
    /// Every column of every item with its type, in the table's order.
    [[nodiscard]] QStringList everything(const QString &table = QStringLiteral("StockList")) const;
    void addItem(const QString &id, const QString &name, const QString &cost,
                 const QString &available = QStringLiteral("10"),
                 const QString &category = QStringLiteral("DRINKS")) const;

    [[nodiscard]] static ImportFile file(const QByteArray &text);
    /// Comma, decimal point, the columns found by their names.
    [[nodiscard]] static ImportChoices choicesFor(const QByteArray &text, ImportKind kind = ImportKind::Items);
    [[nodiscard]] CatalogueImport import();
    /// The preview of a file; fails the test when there is none.
    [[nodiscard]] StagedImport stage(const QByteArray &text);
    [[nodiscard]] StagedImport stage(const QByteArray &text, const ImportChoices &choices);
    /// Stages and applies its valid rows.
    ImportOutcome importValid(const QByteArray &text);
    ImportOutcome importValid(const QByteArray &text, const ImportChoices &choices);
    /// Rows of the list, as "line state key: column before>after …" and for refused ones "line refused column: reason".
    [[nodiscard]] QStringList list(std::int64_t id, RowFilter filter = RowFilter::All);

    /// The bytes of an export; empty when it fails.
    [[nodiscard]] QByteArray exported(ExportKind kind) const;

    /// Null on a server.
    [[nodiscard]] sqlite3 *database() const;

    QTemporaryDir folder;
    ShopPlace place;
    QString path;
    std::unique_ptr<StoreRecords> own;
    std::unique_ptr<harrowby::test::ServerSession> session; ///< null: a file
    Records *records = nullptr;
    ImportDesk desk;
    std::int64_t last = 0; ///< the import that was staged last
};

/// Why there is none; a usual one when it was done.
[[nodiscard]] ImportEnd endOf(const Imported<ImportOutcome> &outcome);

/// Goes on.
[[nodiscard]] bool goOn(const WorkStep &);

} // namespace harrowby::app::test
