// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QLatin1StringView>
#include <QString>

#include <optional>
#include <utility>

namespace harrowby::app {

/// Kinds of deeds, as they are stored. A kind that is stored once is never renamed.
namespace deed {

inline constexpr QLatin1StringView priceByHand("PriceByHand");
inline constexpr QLatin1StringView drawerOpened("DrawerOpened"); ///< only shown: HarrowbyDrawerOpening holds them
inline constexpr QLatin1StringView itemDeleted("ItemDeleted");
inline constexpr QLatin1StringView purchaseDeleted("PurchaseDeleted");
inline constexpr QLatin1StringView purchaseUndone("PurchaseUndone");   ///< the last one, right after it was made
inline constexpr QLatin1StringView stockNotChanged("StockNotChanged"); ///< by a purchase, or by one taken back
inline constexpr QLatin1StringView stockOfRenamed("StockOfRenamed");   ///< lowered though the cart had the old name
inline constexpr QLatin1StringView rightsChanged("RightsChanged");
inline constexpr QLatin1StringView userAdded("UserAdded");
inline constexpr QLatin1StringView passwordSet("PasswordSet");
inline constexpr QLatin1StringView loginRefused("LoginRefused");
inline constexpr QLatin1StringView loggedIn("LoggedIn"); ///< at the office
inline constexpr QLatin1StringView settingChanged("SettingChanged");
inline constexpr QLatin1StringView codeChanged("CodeChanged");
inline constexpr QLatin1StringView paymentSettled("PaymentSettled"); ///< one without a purchase, by a person
inline constexpr QLatin1StringView imported("Imported");
inline constexpr QLatin1StringView importTakenBack("ImportTakenBack");
inline constexpr QLatin1StringView exported("Exported");
inline constexpr QLatin1StringView backedUp("BackedUp");
inline constexpr QLatin1StringView restored("Restored");
inline constexpr QLatin1StringView labelsPrinted("LabelsPrinted");

} // namespace deed

/// One thing that somebody did.
struct Deed
{
    QString kind; ///< one of `deed`
    QString who;  ///< the user as stored; "command line (LINUXUSER)"; empty where nobody knows
    QString what; ///< a line to read, such as "Cost of TEA-0001 from 2.00 to 1.50"
};

/// Who did what, in the table HarrowbyActivity, which is only ever added to. What the component's own log says already
/// is not said again. The time of a deed is that of its statement.
class Deeds
{
public:
    /// The records must outlive it. `place`: where it is done, such as "office", "command line" or a till's name.
    Deeds(Records &records, QString place);

    /// For writeTogether, so that a deed is stored with what it tells, or neither is.
    [[nodiscard]] RecordStatement statement(const Deed &deed) const;
    /// By itself. A failure has been logged and told; what the deed tells stays done.
    std::optional<DbFailure> add(const Deed &deed) const;

    [[nodiscard]] Records &records() const { return m_records; }

private:
    Records &m_records;
    QString m_place;
};

/// The deeds of one user at one place.
class SignedDeeds
{
public:
    /// The records must outlive it.
    SignedDeeds(Records &records, const QString &place, QString who) : m_deeds(records, place), m_who(std::move(who)) {}

    [[nodiscard]] RecordStatement statement(const QString &kind, const QString &what) const
    {
        return m_deeds.statement({kind, m_who, what});
    }
    std::optional<DbFailure> add(const QString &kind, const QString &what) const
    {
        return m_deeds.add({kind, m_who, what});
    }
    [[nodiscard]] Records &records() const { return m_deeds.records(); }

private:
    Deeds m_deeds;
    QString m_who;
};

/// A write that must change a row, and the deed that tells it, when there is one: both are stored, or neither. False
/// when there was no row to change: somebody else has changed what the write's condition names.
[[nodiscard]] Records::Answer<bool> writeTold(Records &records, const RecordTable &table,
                                              const RecordStatement &statement,
                                              const std::optional<RecordStatement> &told);

/// Who works at the command line: "command line (LINUXUSER)".
[[nodiscard]] QString commandLineUser();

/// The place of what is done at the command line.
inline constexpr QLatin1StringView commandLinePlace("command line");
/// The place of what is done in the office.
inline constexpr QLatin1StringView officePlace("office");
/// The place of what is done at a till: "till DESK 1".
[[nodiscard]] QString tillPlace(const QString &till);

} // namespace harrowby::app
