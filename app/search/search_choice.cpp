// SPDX-License-Identifier: MIT
#include "app/search/search_choice.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const QString setting = u"SearchFindsAnywhere"_s;
const QString yes = u"yes"_s;
const QString no = u"no"_s;

} // namespace

bool SearchChoice::findsAnywhere() const
{
    return read().value_or(m_isOwnStore);
}

Records::Answer<bool> SearchChoice::read() const
{
    const auto chosen = m_settings.read(setting);
    if (!chosen)
        return Unexpected(chosen.error());
    return *chosen == yes || (*chosen != no && m_isOwnStore);
}

std::optional<DbFailure> SearchChoice::choose(bool findsAnywhere)
{
    return m_settings.save(setting, findsAnywhere ? yes : no);
}

} // namespace harrowby::app
