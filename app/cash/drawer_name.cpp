// SPDX-License-Identifier: MIT
#include "app/cash/drawer_name.h"

#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto section = u"Cash"_s;
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
    return drawerNameOf(settings.get(section, nameKey, {}));
}

bool saveDrawerName(const OfficeSettings &settings, const QString &name)
{
    return settings.save(section, nameKey, drawerNameOf(name));
}

QString drawerNameOf(const QString &typed)
{
    constexpr qsizetype longest = 40;
    QString name = typed;
    name.removeIf([](QChar c) { return c.category() == QChar::Other_Control && !c.isSpace(); });
    return name.simplified().left(longest).trimmed();
}

} // namespace harrowby::app
