// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/restore.h"

#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace harrowby::app::test {

/// A store with TEA, a backup with OLD TEA, and a folder for what a restore keeps, anew for each test function.
class RestoreDesk : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();

protected:
    static bool carryOn(const WorkStep &) { return true; }
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] QString store() const { return path(QStringLiteral("shop.sqlite")); }
    [[nodiscard]] QString backup() const { return path(QStringLiteral("old.db")); }
    [[nodiscard]] RestoreOrder order() const;
    [[nodiscard]] RestoreResult restore(const WorkWatch &watch = carryOn) const { return restoreStore(order(), watch); }
    /// Nothing half done, neither beside the store nor where its copies go.
    void verifyNoLeftovers() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

} // namespace harrowby::app::test
