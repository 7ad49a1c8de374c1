// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <sys/types.h>

#include <optional>
#include <utility>

/// Store files for tests: made, spoilt, copied as after a crash, and compared byte for byte.
namespace harrowby::app::test {

/// A new store in the usual way, with one item of stock; a server's is filled so. Fails the test when it cannot be
/// made. This and the next three take a server's address too.
void makeStore(const QString &path);

/// The same, with enough rows to have many pages.
void makeBigStore(const QString &path);

/// Opens the file, runs the statements and closes it. Fails the test when one fails.
void runAll(const QString &path, const QStringList &statements);

/// Puts what a result holds into `target`; the reason when it holds none.
template <typename T, typename E>
[[nodiscard]] std::optional<E> into(T &target, Result<T, E> result)
{
    if (!result)
        return std::move(result).error();
    target = *std::move(result);
    return {};
}

/// Why a result holds nothing; empty when it does.
[[nodiscard]] inline QString reasonOf(const Result<void, QString> &result)
{
    return result ? QString() : result.error();
}

/// The address of a server's store for the tests' own sessions, which may do everything.
[[nodiscard]] QString ownersAddress(QString address);

/// First column of every row.
[[nodiscard]] QStringList column(const QString &path, const QString &select);

/// What lies there now: the bytes of the file, its log and its journal.
struct Bytes
{
    QByteArray file, log, journal;
    bool operator==(const Bytes &) const = default;
};
[[nodiscard]] Bytes bytesOf(const QString &path);

/// Copies a file with its log or journal, while it is open: what a crash would leave.
void copyAsAfterCrash(const QString &from, const QString &to);

/// Overwrites bytes in the middle of a file.
void spoil(const QString &path, qint64 offset, qsizetype length);

/// Deletes the rows ("TABLE WHERE condition") while the index keeps its entries for them, so that a reading in the
/// order of the index fails there.
void loseIndexedRows(const QString &path, const QString &index, const QString &rows);

/// Runs as nobody as long as it lives, so that missing rights hold for root too.
class DropRights
{
public:
    DropRights();
    ~DropRights();
    DropRights(const DropRights &) = delete;
    DropRights &operator=(const DropRights &) = delete;

private:
    uid_t m_user;
};

} // namespace harrowby::app::test
