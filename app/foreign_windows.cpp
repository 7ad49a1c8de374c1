// SPDX-License-Identifier: MIT
#include "app/foreign_windows.h"

#include "app/reorder/reorder_list.h"

#include <harrowby/objects.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

void supplyForeignWindows(const std::shared_ptr<DbConnection> &connection)
{
    const std::weak_ptr<DbConnection> held = connection;
    registerClass(ReorderListClassId, [held]() -> std::unique_ptr<QObject> {
        auto open = held.lock();
        return open ? std::make_unique<ReorderList>(std::move(open)) : nullptr;
    });
}

void leaveOutPlugins()
{
    setPluginFolders({});
}

} // namespace harrowby::app
