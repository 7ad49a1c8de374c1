// SPDX-License-Identifier: MIT
#include "store/store_settings.h"

#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"

#include <utility>
#include <variant>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Shown until a shop enters its own address for the daily report.
constexpr auto placeholderEmail = "reports@example.com"_L1;

void addDefaults(DbRecordset &settings)
{
    settings.AddNew();
    settings.Field(u"EmailAddress"_s).assign(QString(placeholderEmail));
    settings.Field(u"Email"_s).assign(std::int64_t{0});
    settings.Field(u"ShowDetails"_s).assign(std::int64_t{1});
    settings.Field(u"Promptreorder"_s).assign(std::int64_t{1});
    settings.Field(u"AutoPurchaseCart"_s).assign(std::int64_t{0});
    settings.Update();
}

void readFlag(DbRecordset &settings, const QString &column, std::int16_t &flag)
{
    if (const std::optional<DbValue> value = settings.Field(column).value())
        flag = valueInt16(*value).value_or(flag);
}

/// A row without an address, or without a column for it, has the placeholder; what cannot be read changes nothing.
void readEmailAddress(DbRecordset &settings, QString &address)
{
    if (settings.HasFailed() || settings.IsEof())
        return;
    const DbValue stored = settings.Field(u"EmailAddress"_s).value().value_or(DbValue());
    address = std::holds_alternative<std::monostate>(stored) ? QString(placeholderEmail) : valueText(stored);
}

} // namespace

StoreSettings readStoreSettings(const std::shared_ptr<DbConnection> &connection, StoreSettings before)
{
    DbRecordset row;
    row.Open(statements::storeSettings(), connection);
    if (row.RecordCount() == 0)
        addDefaults(row);
    StoreSettings settings = std::move(before);
    settings.areRead = settings.areRead || !row.HasFailed();
    readFlag(row, u"ShowDetails"_s, settings.ShowDetailsFlag);
    readEmailAddress(row, settings.ReportEmailAddress);
    readFlag(row, u"Promptreorder"_s, settings.PromptReorderFlag);
    readFlag(row, u"AutoPurchaseCart"_s, settings.HideFinishedFlag);
    return settings;
}

} // namespace harrowby
