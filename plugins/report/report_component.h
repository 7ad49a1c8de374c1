// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QObject>
#include <QString>

#include <memory>

namespace harrowby::report {

/// The component behind harrowby::ReportClassId.
class ReportComponent : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    /// Shows the report over the active window until it is closed; see harrowby/report_component.h.
    void AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString &folder, bool,
                        QString &msgTitle, bool, bool mayEditStockOrReorder, bool &canSettings, QString &loggedUser);
};

} // namespace harrowby::report
