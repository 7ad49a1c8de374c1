// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QString>

#include <memory>

class QObject;

namespace harrowby {

/// The eight arguments of the report component's method, in its order; see harrowby/report_component.h. The pointers
/// are never null: what they point to goes by reference.
struct ReportArguments
{
    std::shared_ptr<DbConnection> connection; ///< by reference: holds afterwards what the component left there
    QString folder;
    bool third = true;
    QString *msgTitle = nullptr;
    bool fifth = true;
    bool mayEditStock = false; ///< edit or reorder
    bool *canSettings = nullptr;
    QString *loggedUser = nullptr;
};

/// Calls "AccountPreview" late-bound, at once and on this thread. False when the object has no such method with these
/// arguments. What the method throws passes through, and what it changed before stays changed.
[[nodiscard]] bool callAccountPreview(QObject &report, ReportArguments &arguments);

} // namespace harrowby
