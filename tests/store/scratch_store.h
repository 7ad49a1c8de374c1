// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/shop_file.h"

#include <harrowby/db_connection.h>

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace harrowby {

/// A database of the test's own with the six tables (a file, or on a server: test::ShopFile), and a connection to it
/// that notes its failures.
class ScratchStore
{
public:
    /// `vfs` names the SQLite VFS to open the file through; null for the usual one.
    explicit ScratchStore(const char *vfs = nullptr);
    ScratchStore(const ScratchStore &) = delete;
    ScratchStore &operator=(const ScratchStore &) = delete;

    [[nodiscard]] QString file() const { return m_file.path(); }
    [[nodiscard]] sqlite3 *handle() const { return m_file.handle(); }
    [[nodiscard]] const std::shared_ptr<DbConnection> &connection() const { return m_connection; }
    /// Closes the handle as a host does; SQLite's result code.
    [[nodiscard]] int close() { return m_file.close(); }

    /// Whether the connection is in a transaction; whether a result of it is open.
    [[nodiscard]] bool isInTransaction() const { return m_file.isInTransaction(); }
    [[nodiscard]] bool isBeingRead() const { return m_file.isBeingRead(); }

    /// Past the component, straight to the engine: statements, and the first column of a SELECT.
    bool run(const QString &statements) const { return m_file.trySql(statements); }
    [[nodiscard]] QStringList column(const QString &select) const;

    /// Adds an enabled item.
    void addItem(const QString &id, const QString &name, double available = 10);

    std::vector<DbFailure> failures;

private:
    test::ShopFile m_file;
    std::shared_ptr<DbConnection> m_connection;
};

} // namespace harrowby
