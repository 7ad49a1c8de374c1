// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::app {

/// Who has logged in to the office. The rights are those of the login: what is changed meanwhile counts at the next
/// one.
struct OfficeUser
{
    QString name; ///< as the login compares it: trimmed and in capitals
    bool isAdministrator = false;
    bool mayKeepStock = false; ///< the right to stock; ADMINISTRATOR has it always
};

} // namespace harrowby::app
