// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QLatin1StringView>

/// The sales report is a component of its own, created by class identifier (harrowby/objects.h) when a user who may see
/// it asks for it. It is a QObject with this late-bound method, a slot or Q_INVOKABLE:
///
///     void AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString &folder, bool,
///                         QString &msgTitle, bool, bool mayEditStockOrReorder, bool &canSettings,
///                         QString &loggedUser);
///
/// - connection: the open connection, never null; what it holds on return becomes the component's
/// - folder: the host's installation folder; may be empty
/// - the third: always true
/// - msgTitle: caption of message boxes; empty
/// - the fifth: always true
/// - mayEditStockOrReorder: the user may edit or reorder stock
/// - canSettings: the user may change settings; what it holds on return becomes the component's
/// - loggedUser: name of the user who is logged in, in capitals; what it holds on return becomes the component's
///
/// It shows the report and returns when that is closed. Methods are found by their signature as moc writes it, so write
/// the types with their namespaces even inside of one: a method with other arguments counts as missing. A missing
/// component, a missing method and an exception out of it are told to the user in one and the same box.
namespace harrowby {

inline constexpr QLatin1StringView ReportClassId("HarrowReport.ReportDll");

/// The method's signature as moc writes it.
inline constexpr char AccountPreviewSignature[] =
    "AccountPreview(std::shared_ptr<harrowby::DbConnection>&,QString,bool,QString&,bool,bool,bool&,QString&)";

} // namespace harrowby
