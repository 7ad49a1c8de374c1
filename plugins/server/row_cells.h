// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"
#include "postgres/postgres_rows.h"
#include "postgres/server_result.h"

#include <QList>
#include <QString>

namespace harrowby::server {

/// Of the row at which a walk is.
class WalkedCells final : public app::RecordCells
{
public:
    /// `rows` must outlive it.
    WalkedCells(const PgRows &rows, const QString &statement);
    [[nodiscard]] int count() const override { return m_columns; }
    [[nodiscard]] app::RecordValue value(int column) const override;
    [[nodiscard]] std::optional<QByteArrayView> utf8(int column) const override;

private:
    const PgRows &m_rows;
    int m_columns;
};

/// The rows that the statement has given, without the identity that a "select *" brings.
[[nodiscard]] QList<app::RecordRow> rowsOf(const PgResult &result, const QString &statement);

/// Hands them to `take`, one by one, as long as it returns true: `goesOn` is what it returned last. How many there are.
int takeRows(const PgResult &result, const QString &statement, const app::Records::RowTaker &take, bool &goesOn);

} // namespace harrowby::server
