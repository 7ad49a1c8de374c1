// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/deeds.h"
#include "app/records/shop_settings.h"

#include <optional>

namespace harrowby::app {

/// Whether the till's search finds a text anywhere, for all tills of the shop. As long as nobody has chosen, it does in
/// the files that this program makes; programs that others are made with may rely on what their engine finds.
class SearchChoice
{
public:
    /// The records must outlive it.
    SearchChoice(Records &records, bool isOwnStore) : m_settings(records), m_isOwnStore(isOwnStore) {}

    /// Where it cannot be read, which has been told then, as if nobody had chosen.
    [[nodiscard]] bool findsAnywhere() const;
    /// The same, for one who tells it.
    [[nodiscard]] Records::Answer<bool> read() const;
    /// In place of what was read. False, and nothing is changed, when somebody else has chosen meanwhile; the failure
    /// when it could not be saved.
    [[nodiscard]] Records::Answer<bool> change(bool before, bool findsAnywhere, const SignedDeeds &deeds);

private:
    [[nodiscard]] bool meaningOf(const std::optional<QString> &stored) const;

    ShopSettings m_settings;
    bool m_isOwnStore;
};

} // namespace harrowby::app
