// SPDX-License-Identifier: MIT
#pragma once

#include "bench/raw_statements.h"

#include <QDateTime>
#include <QString>

#include <memory>

namespace harrowby::bench {

class MeasuredStore;
class Till;

/// The store program at the counter of a till whose window is open; every item of the shop has one code.
class ScanDesk
{
public:
    /// The till's connection must be the one that the store has made last. Throws std::runtime_error when the codes
    /// cannot be made. Both must outlive it.
    ScanDesk(MeasuredStore &store, Till &till);
    ~ScanDesk();
    ScanDesk(const ScanDesk &) = delete;
    ScanDesk &operator=(const ScanDesk &) = delete;

    /// The code of an item, `key` as it stands in the cart.
    [[nodiscard]] QString codeOf(const QString &key) const;
    /// Types a code as a reader does, but for the Enter behind it.
    void type(const QString &code);
    /// Enter, the last key of a scan; ends when cart and total are painted, false when that did not happen.
    bool end();
    /// Finding the code, looking at its item, and the press of the item's button.
    [[nodiscard]] static RawStatements statements(const QString &code, const QString &key, const QDateTime &now);

private:
    class Parts;

    Till &m_till;
    std::unique_ptr<Parts> m_parts;
};

} // namespace harrowby::bench
