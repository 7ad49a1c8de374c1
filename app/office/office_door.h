// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/office_user.h"
#include "app/records/records.h"

#include <QByteArray>
#include <QString>

#include <utility>

/// Who may go into the store's office: ADMINISTRATOR and who has the right to stock, with the name and the password
/// that the till's login takes. How long the next try waits after wrong ones: wrong_tries.h.
namespace harrowby::app {

struct DoorAnswer
{
    enum class Kind {
        Open,
        Blank,       ///< nothing was typed for the name or the password
        Wrong,       ///< no user has this name and this password
        NotEnabled,  ///< the user may not use the till, and so not the office
        NoRight,     ///< the user has no right to stock
        NobodyCould, ///< the store has none who could be let in
        Failed,      ///< the store could not be read; the reason says why
    };
    Kind kind = Kind::Failed;
    DbFailure error;
    OfficeUser user; ///< when it is open; the name whenever it is known
};

/// Compares as the login does: trimmed and in capitals, and never a user of the type VIEWER.
[[nodiscard]] DoorAnswer askAtDoor(Records &records, const QString &name, const QString &password);

/// Tells by a deed what was tried, with the name as askAtDoor() compares it. One that is none of the store's may be a
/// password in the wrong field, and is not kept.
void noteAtDoor(Records &records, const DoorAnswer &answer, const QString &name);

/// What stands in the way before anything is typed; Open when nothing does.
[[nodiscard]] DoorAnswer findKeyHolder(Records &records);

/// Whether who has logged in would be let in again: rights may be taken away, and passwords changed, while an office is
/// open for hours.
class DoorWatch
{
public:
    /// The records must outlive it.
    DoorWatch(Records &records, OfficeUser user) : m_records(records), m_user(std::move(user)) {}

    /// Why she would not be, in words for a person; empty when she would.
    [[nodiscard]] QString refusal() const;
    /// A password was set here. It is her own to know when it is hers.
    void followPassword(const QString &userName);

private:
    Records &m_records;
    OfficeUser m_user;
};

} // namespace harrowby::app
