// SPDX-License-Identifier: MIT
#include "app/work/watched_store.h"

#include "basic/store_address.h"

#include <utility>

namespace harrowby::app {

WatchedStore::WatchedStore(const WorkWatch &watch) :
    m_given(watch), m_watch([this](const WorkStep &step) {
        m_step = step;
        return m_given(step);
    })
{
}

Result<std::unique_ptr<WatchedStore>, WatchedStore::NotOpened> WatchedStore::open(const QString &store, Access access,
                                                                                  const WorkWatch &watch)
{
    std::unique_ptr<WatchedStore> made(new WatchedStore(watch));
    std::function<bool()> goesOn;
    if (isServer(store) || access == Access::Read)
        goesOn = [watched = made.get()] { return watched->goesOn(); };
    auto opened = openStoreRecords(store, access, goesOn);
    if (!opened)
        return Unexpected(NotOpened{made->m_hasStopped, opened.error()});
    made->m_store = *std::move(opened);
    made->records().setFailureHandler([watched = made.get()](const DbFailure &failure) {
        watched->m_isUnknown = watched->m_isUnknown || Records::isUnknown(failure);
    });
    return made;
}

/// Called in the middle of a wait.
bool WatchedStore::goesOn()
{
    const bool goesOn = m_given(m_step);
    m_hasStopped = m_hasStopped || !goesOn;
    return goesOn;
}

} // namespace harrowby::app
