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
    const QString chosen = m_settings.value(setting);
    return chosen == yes || (chosen != no && m_isOwnStore);
}

std::optional<DbFailure> SearchChoice::choose(bool findsAnywhere)
{
    return m_settings.save(setting, findsAnywhere ? yes : no);
}

} // namespace harrowby::app
