// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace harrowby::app {

/// Who has logged in to the office. The pages are those of the login; what changes much asks at the door once more
/// (DoorWatch).
struct OfficeUser
{
    QString name; ///< as the login compares it: trimmed and in capitals
    bool isAdministrator = false;
    bool mayKeepStock = false;    ///< the right to stock; ADMINISTRATOR has it always
    QByteArray passwordMark = {}; ///< equal for equal passwords; empty when it is not known
};

} // namespace harrowby::app
