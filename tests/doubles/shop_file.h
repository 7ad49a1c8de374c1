// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/server_shop.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

struct sqlite3;

namespace harrowby {
class DbConnection;
}

namespace harrowby::test {

/// A shop's file: a real SQLite file in a folder of its own, with the six tables and nothing in them. Where shops are
/// on a server (shopsAreOnAServer()), a database there.
class ShopFile
{
public:
    /// `vfs` names the engine's file system to open it through; null for the usual one.
    explicit ShopFile(const char *vfs = nullptr);
    ~ShopFile();
    ShopFile(const ShopFile &) = delete;
    ShopFile &operator=(const ShopFile &) = delete;

    /// Null on a server.
    [[nodiscard]] sqlite3 *handle() const { return m_handle; }
    /// On a server the address of the database.
    [[nodiscard]] QString path() const;
    /// The product's connection: over the handle, or to the server.
    [[nodiscard]] std::shared_ptr<DbConnection> connect(const QString &location = {}) const;
    /// Closes the handle as a host does; SQLite's result code.
    [[nodiscard]] int close();
    /// Runs statements; a failing one ends the test program with its message.
    void sql(const QString &statements) const;
    /// Runs statements; false when one failed.
    [[nodiscard]] bool trySql(const QString &statements) const;
    /// Whether it was a server that takes no such value in that column.
    [[nodiscard]] bool hasRefusedAValue() const { return m_shop && m_shop->session().hasRefusedAValue(); }
    /// Whether a transaction is open on the connections over the handle, or to the server; whether a result is.
    [[nodiscard]] bool isInTransaction() const;
    [[nodiscard]] bool isBeingRead() const;
    /// First column of the first row, as text; "(no row)" when there is none.
    [[nodiscard]] QString cell(const QString &select) const;
    /// Whether a column of figures keeps this literal. A file's keeps everything.
    [[nodiscard]] bool keepsFigure(const QString &literal) const;
    /// First column of all rows. On a server only.
    [[nodiscard]] QStringList column(const QString &select) const;
    /// All rows, columns joined by "|".
    [[nodiscard]] QStringList rows(const QString &select) const;

    void addItem(const QString &id, const QString &name, double cost, double available,
                 const QString &category = QStringLiteral("DRINKS"), const QString &use = QStringLiteral("Enabled"),
                 double reorderLevel = 2) const;
    /// A user with the rights named in `rights` ("Sales", "Report", "Undo", "Delete", "Settings", "Reorder"), who may
    /// use the tool.
    void addUser(const QString &name, const QString &password, const QStringList &rights = {},
                 const QString &type = QStringLiteral("STAFF")) const;

private:
    [[nodiscard]] int count(const QString &clients) const;
    [[nodiscard]] QStringList onServer(const QString &select, ServerSession::Columns columns) const;

    QTemporaryDir m_folder;
    sqlite3 *m_handle = nullptr;
    std::unique_ptr<ServerShop> m_shop; ///< null: a file
};

/// As a literal of a statement.
[[nodiscard]] QString quoted(QString text);

} // namespace harrowby::test
