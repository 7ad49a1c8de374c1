// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/shop_file.h"

#include <harrowby/sqlite_connection.h>

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace harrowby {

/// A database file of the test's own with the six tables, and a connection over it that notes its failures.
class ScratchStore
{
public:
    /// `vfs` names the SQLite VFS to open the file through; null for the usual one.
    explicit ScratchStore(const char *vfs = nullptr);
    ScratchStore(const ScratchStore &) = delete;
    ScratchStore &operator=(const ScratchStore &) = delete;

    [[nodiscard]] QString file() const { return m_file.path(); }
    [[nodiscard]] sqlite3 *handle() const { return m_file.handle(); }
    [[nodiscard]] const std::shared_ptr<SqliteConnection> &connection() const { return m_connection; }
    /// Closes the handle as a host does; SQLite's result code.
    [[nodiscard]] int close() { return m_file.close(); }

    /// Past the component, straight to SQLite: statements, and the first column of a SELECT.
    bool run(const QString &statements) const;
    [[nodiscard]] QStringList column(const QString &select) const;

    /// Adds an enabled item.
    void addItem(const QString &id, const QString &name, double available = 10);

    std::vector<DbFailure> failures;

private:
    test::ShopFile m_file;
    std::shared_ptr<SqliteConnection> m_connection;
};

} // namespace harrowby
