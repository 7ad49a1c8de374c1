// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"

#include "app/office/user_rules.h"
#include "app/records/deeds.h"
#include "app/shop/failure_text.h"
#include "basic/administrator.h"
#include "basic/text.h"
#include "basic/values.h"

#include <QCryptographicHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DoorAnswer::Kind;

/// Those who can log in at all, with what decides whether they are let in.
const auto loginRows = u"SELECT UPPER(Username), InventoryUse, %1, UPPER(Password) FROM Users WHERE Type <> '%2'"_s.arg(
    stockRight, viewerType);

QByteArray passwordMark(const RecordRow &row)
{
    return QCryptographicHash::hash(recordText(row.at(3)).toUtf8(), QCryptographicHash::Sha256);
}

/// A row of `loginRows`. As the till's login reads it: who may use it, and the right to stock.
DoorAnswer answerFor(const RecordRow &row)
{
    const QString name = recordText(row.at(0));
    if (name == administratorName)
        return {Kind::Open, {}, {name, true, true, passwordMark(row)}};
    if (!valueEqualsTrue(row.at(1)))
        return {Kind::NotEnabled, {}, {name, false, false}};
    const bool mayKeepStock = valueIsTrue(row.at(2));
    return {mayKeepStock ? Kind::Open : Kind::NoRight, {}, {name, false, mayKeepStock, passwordMark(row)}};
}

Records::Answer<QList<RecordRow>> rowsNamed(Records &records, const QString &name)
{
    return records.read({loginRows + u" AND UPPER(Username) = ?"_s, {name}});
}

} // namespace

DoorAnswer askAtDoor(Records &records, const QString &name, const QString &password)
{
    const QString comparedName = trimmedUpper(name);
    const QString compared = trimmedUpper(password);
    if (comparedName.isEmpty() || compared.isEmpty())
        return {Kind::Blank, {}, {}};
    const auto rows =
        records.read({loginRows + u" AND UPPER(Username) = ? AND UPPER(Password) = ?"_s, {comparedName, compared}});
    if (!rows)
        return {Kind::Failed, rows.error(), {}};
    // Of several, the till takes the first one, too.
    return rows->isEmpty() ? DoorAnswer{Kind::Wrong, {}, {}} : answerFor(rows->constFirst());
}

void noteAtDoor(Records &records, const DoorAnswer &answer, const QString &name)
{
    const Deeds deeds(records, officePlace);
    switch (answer.kind) {
    case Kind::Open:
        (void)deeds.add({deed::loggedIn, name, u"Opened the office"_s});
        break;
    case Kind::Wrong:
        if (const auto known = records.read({u"SELECT 1 FROM Users WHERE UPPER(Username) = ?"_s, {name}});
            known && !known->isEmpty())
            (void)deeds.add({deed::loginRefused, name, u"Wrong password"_s});
        else
            (void)deeds.add({deed::loginRefused, {}, u"Unknown user name"_s});
        break;
    case Kind::NotEnabled:
    case Kind::NoRight:
        (void)deeds.add({deed::loginRefused, name, u"Not enough rights"_s});
        break;
    default:
        break;
    }
}

DoorAnswer findKeyHolder(Records &records)
{
    const auto rows = records.read({loginRows, {}});
    if (!rows)
        return {Kind::Failed, rows.error(), {}};
    const bool canOpen =
        std::ranges::any_of(*rows, [](const RecordRow &row) { return answerFor(row).kind == Kind::Open; });
    return {canOpen ? Kind::Open : Kind::NobodyCould, {}, {}};
}

QString DoorWatch::refusal() const
{
    const auto words = [this](const QString &why) {
        return u"%1 since the office was opened. Nothing was done: please close the office, and log in again."_s.arg(
            why.arg(m_user.name));
    };
    const auto rows = rowsNamed(m_records, m_user.name);
    if (!rows)
        return failureWords(u"The users could not be read. Nothing was done."_s, rows.error());
    QString why = u"%1 can no longer log in: the user was changed or removed"_s;
    for (const RecordRow &row : *rows) {
        const DoorAnswer answer = answerFor(row);
        if (!m_user.passwordMark.isEmpty() && passwordMark(row) != m_user.passwordMark)
            why = u"The password of %1 was changed"_s;
        else if (answer.kind == Kind::Open)
            return {};
        else
            return words(answer.kind == Kind::NoRight
                             ? u"The right \"%1\" was taken away from %2"_s.arg(stockRightTitle())
                             : u"The right to use the till was taken away from %1"_s);
    }
    return words(why);
}

void DoorWatch::followPassword(const QString &userName)
{
    if (m_user.passwordMark.isEmpty() || trimmedUpper(userName) != m_user.name)
        return;
    if (const auto rows = rowsNamed(m_records, m_user.name); rows && !rows->isEmpty())
        m_user.passwordMark = passwordMark(rows->constFirst());
}

} // namespace harrowby::app
