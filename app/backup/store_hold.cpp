// SPDX-License-Identifier: MIT
#include "app/backup/store_hold.h"

#include "app/backup/store_locked.h"
#include "app/backup/store_users.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// SQLite's lock bytes: pending, reserved, and the range that each reader locks a part of, also one of a log.
constexpr off_t firstLockByte = 0x40000000;
constexpr off_t lockBytes = 512;

bool lockAll(int file)
{
    struct flock all = {};
    all.l_type = F_WRLCK;
    all.l_whence = SEEK_SET;
    all.l_start = firstLockByte;
    all.l_len = lockBytes;
    return ::fcntl(file, F_OFD_SETLK, &all) == 0;
}

QString systemReason()
{
    return QString::fromLocal8Bit(std::generic_category().message(errno).c_str());
}

} // namespace

std::optional<QString> StoreHold::take(const QString &store)
{
    release();
    m_file = ::open(QFile::encodeName(store).constData(), O_RDWR | O_CLOEXEC);
    if (m_file < 0)
        return u"The store file cannot be opened (%1)."_s.arg(systemReason());
    for (int tries = 1; !lockAll(m_file); ++tries) {
        if (errno != EAGAIN && errno != EACCES) {
            const QString reason = systemReason();
            release();
            return u"The store file cannot be locked (%1)."_s.arg(reason);
        }
        const StoreUsers users = findStoreUsers(store);
        if (!users.isEmpty() || tries == lockTries) {
            release();
            return storeInUse(users);
        }
        std::this_thread::sleep_for(lockPause);
    }
    if (const StoreUsers users = findStoreUsers(store); !users.isEmpty()) {
        release();
        return storeInUse(users);
    }
    return {};
}

void StoreHold::release()
{
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
}

} // namespace harrowby::app
