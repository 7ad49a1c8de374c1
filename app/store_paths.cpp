// SPDX-License-Identifier: MIT
#include "store_paths.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString inDataFolder(const QString &name)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Harrowby/"_s + name;
}

} // namespace

QString defaultStorePath()
{
    return inDataFolder(u"store.sqlite"_s);
}

QString demoStorePath()
{
    return inDataFolder(u"demo.sqlite"_s);
}

QString logPath()
{
    return inDataFolder(u"harrowby.log"_s);
}

} // namespace harrowby::app
