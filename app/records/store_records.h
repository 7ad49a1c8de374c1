// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"
#include "basic/result.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace harrowby::app {

enum class Access {
    Read, ///< never writes
    Write,
};

/// Records of a store over a connection of their own, for work that may take long, on whichever thread that uses it: a
/// till's lock is waited for, and it waits for nobody who is not in its way.
class StoreRecords
{
public:
    StoreRecords() = default;
    virtual ~StoreRecords() = default;
    StoreRecords(const StoreRecords &) = delete;
    StoreRecords &operator=(const StoreRecords &) = delete;

    [[nodiscard]] virtual Records &records() = 0;

    /// Ends the statement that runs, if one does, and what is read or waited for with it; it fails then, and
    /// wasInterrupted() says why. From any thread.
    virtual void interrupt() = 0;
    /// Asked now and then while a statement runs, on the thread that uses the records; must not use them. False ends
    /// the statement as interrupt() does. An empty one switches it off.
    virtual void setWatch(std::function<bool()> goesOn) = 0;
    /// Whether this failure is that somebody has ended the statement.
    [[nodiscard]] virtual bool wasInterrupted(const DbFailure &failure) const = 0;

    /// From now on all that is read is of one moment, whatever is written meanwhile, until releaseMoment(); nothing is
    /// written in between. The failure, which is told. Not within `together`.
    [[nodiscard]] virtual std::optional<DbFailure> holdMoment() = 0;
    virtual void releaseMoment() = 0;
};

/// Opens a store that has been judged before, by its address (basic/store_address.h): a file's through SQLite, a
/// server's through serverEngine(). Nothing is made. The reason why not, in words for a person. `goesOn` is the first
/// watch, which a server is asked about already while it is waited for here.
[[nodiscard]] Result<std::unique_ptr<StoreRecords>, QString> openStoreRecords(const QString &store, Access access,
                                                                              std::function<bool()> goesOn = {});

} // namespace harrowby::app
