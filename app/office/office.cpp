// SPDX-License-Identifier: MIT
#include "app/office/office.h"

#include "app/office/office_door.h"
#include "app/office/office_login_dialog.h"
#include "app/office/office_window.h"
#include "app/office/user_rules.h"
#include "app/shop/failure_text.h"
#include "app/shop/store_paths.h"
#include "app/start/display.h"
#include "app/start/start_message.h"
#include "basic/text.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DoorAnswer::Kind;

/// Why the user is not let in. Precondition: the answer is not Open.
QString wordsOf(const DoorAnswer &answer, const QString &name)
{
    switch (answer.kind) {
    case Kind::Blank:
        return u"Please enter user name and password."_s;
    case Kind::Wrong:
        return u"This is not the password of %1, or there is no such user."_s.arg(name);
    case Kind::NotEnabled:
        return u"%1 may not use the till, and so not the office."_s.arg(name);
    case Kind::NoRight:
        return u"%1 may not open the office: that takes the right \"%2\"."_s.arg(name, stockRightTitle());
    case Kind::NobodyCould:
        return u"The store has no user ADMINISTRATOR who can log in, and no other one with the right to stock, so "
               "nobody can open its office.\nLet the program that keeps the users add one; the type must not be VIEWER."_s;
    default:
        return failureWords(u"The users could not be read."_s, answer.error);
    }
}

Result<OfficeUser, QString> letIn(Records &records, const QString &typedName, const QString &password)
{
    const QString name = trimmedUpper(typedName);
    const DoorAnswer answer = askAtDoor(records, name, password);
    noteAtDoor(records, answer, name);
    if (answer.kind != Kind::Open)
        return Unexpected(wordsOf(answer, name));
    return answer.user;
}

/// False when nobody can be let in; the message has been shown.
bool canAskAtDoor(Records &records)
{
    if (const DoorAnswer door = findKeyHolder(records); door.kind != Kind::Open) {
        tellProblem(wordsOf(door, {}));
        return false;
    }
    if (!canShowBoxes()) {
        tellProblem(u"The store's office asks for a password, and there is no screen to ask for it."_s);
        return false;
    }
    return true;
}

} // namespace

OfficeLeaving runOffice(const OfficeStore &store, const OfficeSettings &settings, const QString &reason,
                        const std::function<QString()> &loss)
{
    Records &records = *store.records;
    if (!canAskAtDoor(records))
        return {OfficeEnd::Refused, {}, {}};
    const auto check = [&records](const QString &name, const QString &password) {
        return letIn(records, name, password);
    };
    OfficeLoginDialog login(check, WrongTries(officeTriesPath(store.address)), reason);
    if (login.exec() != QDialog::Accepted)
        return {};
    OfficeWindow window(store, settings, login.user());
    window.watchStore(loss);
    window.exec();
    if (window.askedRestore().isEmpty())
        return {};
    return {OfficeEnd::Restore, window.askedRestore(), login.user().name};
}

void readOfficeAnew()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *office = qobject_cast<OfficeWindow *>(window))
            office->readAnew();
    }
}

} // namespace harrowby::app
