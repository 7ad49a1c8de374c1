// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QLatin1StringView>

/// The sales report is a component of its own, created by class identifier (harrowby/objects.h) each time a user with
/// the right to it presses "Sales Report", and destroyed when its method has returned. It is a QObject with this
/// late-bound method, a slot or Q_INVOKABLE, called on the user-interface thread:
///
///     void AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString &folder, bool,
///                         QString &msgTitle, bool, bool mayEditStockOrReorder, bool &canSettings,
///                         QString &loggedUser);
///
/// - connection (in, out): the open connection, never null; on return the component continues with what it holds
/// - folder (in): DbConnection::location() without "Harrowby.dll"; may be empty
/// - third (in): always true
/// - msgTitle (in, out): caption of message boxes; empty unless an earlier report has changed it
/// - fifth (in): always true
/// - mayEditStockOrReorder (in): the user may edit or reorder stock
/// - canSettings (in, out): the user may change settings
/// - loggedUser (in, out): name of the user who is logged in, in capitals
///
/// The method shows the report and returns when that is closed; then the component reads the saved setting
/// saved::EmailReport again. The connection is taken over in any case, the other out-arguments only when that has
/// worked, and only those that were changed.
///
/// The method is found by its signature as moc writes it: qualify the types with their namespaces even inside the
/// namespace. A method with other arguments counts as missing. When the component or the method is missing, or the
/// method throws, the user is told so in one and the same box. `folder` is the host's, so nothing is written there.
namespace harrowby {

inline constexpr QLatin1StringView ReportClassId("HarrowReport.ReportDll");

/// The method's signature as moc writes it, for QMetaObject::indexOfMethod().
inline constexpr char AccountPreviewSignature[] =
    "AccountPreview(std::shared_ptr<harrowby::DbConnection>&,QString,bool,QString&,bool,bool,bool&,QString&)";

} // namespace harrowby
