// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/shop_file.h"

#include <QString>
#include <QStringList>

#include <memory>

struct sqlite3;

namespace harrowby::test {

class ServerSession;

/// A further connection to a shop's file, as the back office or another till has it. Its statements may fail. On a
/// server one to the database that the path names.
class Database
{
public:
    /// Opens for reading and writing, or for reading only; what cannot be opened fails every statement.
    explicit Database(const QString &path, bool readOnly = false);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// Null on a server.
    [[nodiscard]] sqlite3 *handle() const { return m_handle; }
    /// Runs statements; false when one failed.
    bool run(const QString &statements);
    /// All rows, columns joined by "|"; "(failed)" in place of what could not be read.
    [[nodiscard]] QStringList rows(const QString &select) const;
    /// Every row of every table, with the types of its values.
    [[nodiscard]] QStringList everything() const;
    [[nodiscard]] QString integrity() const;
    /// Copies all of another database into this one.
    bool copy(const Database &from);

private:
    sqlite3 *m_handle = nullptr;
    std::unique_ptr<ServerSession> m_session; ///< null: a file
};

} // namespace harrowby::test
