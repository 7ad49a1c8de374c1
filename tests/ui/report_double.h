// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <utility>

namespace harrowby::test {

/// A report component whose method calls a function of the test.
class Report : public QObject
{
    Q_OBJECT

public:
    /// The eight arguments, while the call lasts.
    struct Call
    {
        std::shared_ptr<DbConnection> &connection;
        QString folder;
        bool third;
        QString &msgTitle;
        bool fifth;
        bool mayEditStock;
        bool &canSettings;
        QString &loggedUser;
    };
    using Show = std::function<void(Call &call)>;

    explicit Report(Show show) : m_show(std::move(show)) {}

public Q_SLOTS:
    void AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString &folder, bool third,
                        QString &msgTitle, bool fifth, bool mayEditStock, bool &canSettings, QString &loggedUser)
    {
        Call call{connection, folder, third, msgTitle, fifth, mayEditStock, canSettings, loggedUser};
        m_show(call);
    }

private:
    Show m_show;
};

/// One whose method takes other arguments.
class ReportOfOtherArguments : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void AccountPreview(const QString &folder) { qFatal("called with %s", qPrintable(folder)); }
};

} // namespace harrowby::test
