// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QString>

#include <memory>

struct sqlite3;

namespace harrowby::app {

/// The open store that an office keeps: a file, or one on a server.
struct OfficeStore
{
    QString address;                  ///< path of the file, or the server's target
    std::shared_ptr<Records> records; ///< over the connection that is open
    bool isOwn = true;                ///< made with this program, and not with another one
    sqlite3 *file = nullptr;          ///< null on a server; outlives the office
};

/// Of a file that is open; the connection must outlive it.
[[nodiscard]] OfficeStore officeStore(sqlite3 *file, const QString &path);

} // namespace harrowby::app
