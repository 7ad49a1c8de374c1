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
    return meaningOf(*chosen);
}

bool SearchChoice::meaningOf(const std::optional<QString> &stored) const
{
    return stored == yes || (stored != no && m_isOwnStore);
}

Records::Answer<bool> SearchChoice::change(bool before, bool findsAnywhere, const SignedDeeds &deeds)
{
    const auto stored = m_settings.read(setting);
    if (!stored)
        return Unexpected(stored.error());
    if (meaningOf(*stored) != before)
        return false;
    const QString what = findsAnywhere ? u"The search finds a text anywhere: switched on."_s
                                       : u"The search finds a text anywhere: switched off."_s;
    return m_settings.replace(setting, *stored, findsAnywhere ? yes : no, deeds.statement(deed::settingChanged, what));
}

} // namespace harrowby::app
