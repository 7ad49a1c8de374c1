// SPDX-License-Identifier: MIT
#include "app/office/office.h"

#include "app/office/office_door.h"
#include "app/office/office_password_dialog.h"
#include "app/office/office_window.h"
#include "app/office/users_table.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_paths.h"
#include "app/start/display.h"
#include "app/start/start_message.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DoorAnswer::Kind;

/// Why nobody is let in. Precondition: the answer is not Open.
QString wordsOf(const DoorAnswer &answer)
{
    switch (answer.kind) {
    case Kind::Blank:
        return u"Please enter the password."_s;
    case Kind::Wrong:
        return u"This is not the password of ADMINISTRATOR."_s;
    case Kind::NoAdministrator:
        return u"The store has no user ADMINISTRATOR who can log in, so nobody can open its office.\n"
               "Let the program that keeps the users add one; the type must not be VIEWER."_s;
    default:
        return engineWords(u"The users could not be read."_s, answer.error);
    }
}

Result<void, QString> checkPasswordAtDoor(sqlite3 *database, const QString &password)
{
    const DoorAnswer answer = askAtDoor(database, password);
    if (answer.kind != Kind::Open)
        return Unexpected(wordsOf(answer));
    return {};
}

} // namespace

OfficeEnd runOffice(StoreGuard &guard, const QString &store, const OfficeSettings &settings)
{
    sqlite3 *database = guard.database();
    if (const DoorAnswer door = findAdministrator(database); door.kind != Kind::Open) {
        tellProblem(wordsOf(door));
        return OfficeEnd::Refused;
    }
    if (!canShowBoxes()) {
        tellProblem(u"The store's office asks for a password, and there is no screen to ask for it."_s);
        return OfficeEnd::Refused;
    }
    OfficePasswordDialog password([database](const QString &typed) { return checkPasswordAtDoor(database, typed); },
                                  WrongTries(officeTriesPath(store)));
    if (password.exec() != QDialog::Accepted)
        return OfficeEnd::Left;
    OfficeWindow window(database, store, settings);
    window.watchStore([&guard] { return guard.check() ? QString() : lossHeadline(guard.loss()); });
    window.exec();
    return OfficeEnd::Left;
}

} // namespace harrowby::app
