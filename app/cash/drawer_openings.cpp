// SPDX-License-Identifier: MIT
#include "app/cash/drawer_openings.h"

#include "app/records/record_tables.h"
#include "basic/text.h"

#include <QUuid>

using namespace Qt::StringLiterals;

namespace harrowby::app {

bool recordOpening(Records &records, const DrawerOpening &opening)
{
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const auto written = records.write(
        kept::drawerOpening(),
        {u"insert into HarrowbyDrawerOpening (OpeningID, OpenedAt, OpenedBy, Drawer, Reason) values (?, ?, ?, ?, ?)"_s,
         {id, recordTime(opening.when), opening.user, opening.drawer, opening.reason}});
    return written.has_value();
}

QString openingReason(const QString &typed)
{
    constexpr qsizetype longest = 200;
    return tidyLabel(typed, longest);
}

} // namespace harrowby::app
