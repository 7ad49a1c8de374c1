// SPDX-License-Identifier: MIT
#include "basic/dates.h"
#include "spoken/spoken.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/inventory.h"
#include "ui/widgets/activity_text.h"

#include <QLabel>

using namespace Qt::StringLiterals;

namespace harrowby {

void Inventory::LogActivity(const QString &message, int buttons, bool plainBox, bool quiet)
{
    // With "Show Details On Purchase" off, nothing that is reported here shows a box.
    if (m_state.settings.ShowDetailsFlag != 0 && !quiet)
        ask(message, plainBox ? box::OkOnly : buttons);
    reportOutcome(m_controls.StatusBar1_2, message);
    const QString time = activityLogTime(m_platform.clock->now());
    m_controls.Text1->prepend(u"["_s + time + u"] -- "_s + message + u"\n\n"_s);
    // The clock is read once for each column, as the two stand for themselves.
    const QString times = usageTime(m_platform.clock->now());
    const QString dates = usageTime(m_platform.clock->now());
    Execute(connection(), statements::usage(message, times, dates));
}

void Inventory::clearActivityLog()
{
    if (ask(u"Clear Activity Log!"_s, box::AskDefaultNo) != Answer::Yes)
        return;
    m_controls.Text1->clearEntries();
    LogActivity(u"Activity Cleared!"_s, box::Information, false, true);
}

} // namespace harrowby
