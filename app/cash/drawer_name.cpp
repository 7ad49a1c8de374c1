// SPDX-License-Identifier: MIT
#include "app/cash/drawer_name.h"

#include "basic/text.h"

#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto cashSection = u"Cash"_s;
const auto nameKey = u"Drawer"_s;

} // namespace

QString drawerName(const QString &option, const OfficeSettings &settings)
{
    for (const QString &name : {drawerNameOf(option), savedDrawerName(settings)}) {
        if (!name.isEmpty())
            return name;
    }
    const QString machine = drawerNameOf(QSysInfo::machineHostName());
    return machine.isEmpty() ? u"Till"_s : machine;
}

QString savedDrawerName(const OfficeSettings &settings)
{
    return drawerNameOf(settings.get(cashSection, nameKey, {}));
}

bool saveDrawerName(const OfficeSettings &settings, const QString &name)
{
    return settings.save(cashSection, nameKey, drawerNameOf(name));
}

QString drawerNameOf(const QString &typed)
{
    return tidyLabel(typed);
}

} // namespace harrowby::app
