// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/private_cluster.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace harrowby::app::test {

/// A private server with stores as harrowby-server makes them, with the program's own tables and everybody's rights:
/// the logins till_one, office_one, and office_chief, who acts for the owner. And a folder for files.
class ServerDesk
{
public:
    /// Starts the server. Fails the test program when it cannot.
    ServerDesk();

    /// An empty store in a database of its own, and an empty folder.
    void begin();

    [[nodiscard]] const QString &database() const { return m_database; }
    [[nodiscard]] QString target(const QString &user = QStringLiteral("postgres")) const;
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] QString folder() const { return m_folder->path(); }
    /// All rows of the store on the server.
    [[nodiscard]] QStringList everyRow() const;
    [[nodiscard]] QString countOf(const QString &table);
    void sql(const QString &statements) { cluster.sql(statements, m_database); }
    /// Puts the rows of makeFullStore() into "full.sqlite", and from there into the store.
    void fill() const;

    harrowby::test::PrivateCluster cluster;

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_database;
    int m_databases = 0;
};

} // namespace harrowby::app::test
