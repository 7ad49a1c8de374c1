// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QList>
#include <QSet>
#include <QString>

#include <cstdint>

namespace harrowby::app {

/// Which runs of the program at a store are alive: a run holds the lock of its number while it lives, and every death
/// releases it.
class RunLocks
{
public:
    enum class Holder {
        Nobody, ///< that run is dead
        Somebody,
        NotKnown,
    };

    RunLocks() = default;
    virtual ~RunLocks() = default;
    RunLocks(const RunLocks &) = delete;
    RunLocks &operator=(const RunLocks &) = delete;

    /// Takes the lock of this run, or says why it cannot be had. Held until this object goes.
    [[nodiscard]] virtual Result<void, QString> hold(std::int64_t run) = 0;
    [[nodiscard]] virtual Holder holderOf(std::int64_t run) const = 0;
    /// Of all of them, in their order.
    [[nodiscard]] virtual QList<Holder> holdersOf(const QList<std::int64_t> &runs) const;
};

/// Locks in an empty file beside the store, STORE-runs: for each run one byte, at the place of its number. They are
/// locks of the open file (F_OFD_SETLK), which the kernel drops with the process, and not those by which SQLite locks.
/// The last one that ends removes the file, with all of it locked; so whoever has locked looks whether the file still
/// bears the name.
class FileRunLocks final : public RunLocks
{
public:
    /// `storePath` may be a link; the file then lies beside the store itself. Nothing is opened yet.
    explicit FileRunLocks(const QString &storePath);
    ~FileRunLocks() override;

    /// Makes the file when there is none, with the mode of the store.
    [[nodiscard]] Result<void, QString> hold(std::int64_t run) override;
    [[nodiscard]] Holder holderOf(std::int64_t run) const override;
    [[nodiscard]] QString path() const { return m_path; }

private:
    [[nodiscard]] int open(bool make) const;
    void closeFile() const;
    [[nodiscard]] bool isAtItsPath() const;

    QString m_storePath;
    QString m_path;
    mutable int m_file = -1;
    QSet<std::int64_t> m_held; ///< its own, which its own file does not tell
};

} // namespace harrowby::app
