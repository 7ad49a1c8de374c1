// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/store_hold.h"
#include "app/shop/file_identity.h"
#include "app/shop/store_problem.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace harrowby::app {

class Workshop;

/// Whether a store refused for this reason holds nothing that SQLite could copy as a whole.
[[nodiscard]] bool isDamage(ProblemKind kind);

/// Whether the log beside a store that nobody has open holds rows that SQLite would pass over, as its checksums are
/// wrong before them.
[[nodiscard]] bool logIsDamaged(const QString &store);

/// Keeps the files of a store as they are, byte by byte, where SQLite cannot copy it: the store file, its log and its
/// journal, as "KEPT.db", "KEPT.db-wal" and "KEPT.db-journal", so that they still belong together.
class DamagedFiles
{
public:
    explicit DamagedFiles(const QString &store);
    ~DamagedFiles();
    DamagedFiles(const DamagedFiles &) = delete;
    DamagedFiles &operator=(const DamagedFiles &) = delete;

    struct End
    {
        bool stopped = false;
        QString problem; ///< for a person; empty when all went well
    };
    /// Copies into a hidden folder beside `target`, writes through to the disk, and compares. `goesOn` gets percents.
    [[nodiscard]] End copy(const StoreHold &hold, const QString &target, const std::function<bool(int)> &goesOn);
    /// The copies get their names, beside each other and new ones.
    [[nodiscard]] End giveNames();

    [[nodiscard]] bool isCopied() const { return m_isCopied; }
    /// Whether the store's files are still those that were copied, as far as their sizes and times tell.
    [[nodiscard]] bool isStillSo() const { return m_facts == factsNow(); }
    /// The names that the files have got, that of the store file first.
    [[nodiscard]] const QStringList &names() const { return m_names; }

private:
    using Facts = QList<std::optional<FileFacts>>;
    [[nodiscard]] Facts factsNow() const;
    [[nodiscard]] QString copyOf(const QString &ending) const;
    [[nodiscard]] QStringList endings() const; ///< of the files that were copied

    QString m_store; ///< links followed
    QString m_target;
    std::unique_ptr<Workshop> m_workshop;
    Facts m_facts;
    QStringList m_names;
    bool m_isCopied = false;
};

} // namespace harrowby::app
