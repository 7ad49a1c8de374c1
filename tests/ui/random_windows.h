// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/doubles.h"

#include <harrowby/db_connection.h>

#include <QObject>
#include <QRandomGenerator>

#include <functional>
#include <memory>

namespace harrowby {
class ObjectRegistry;
}

namespace harrowby::test {

/// What the windows of a host share.
struct HostWindows
{
    std::shared_ptr<MemorySettings> settings;
    std::function<void(QRandomGenerator &random)> meanwhile; ///< while one of them is open
    QRandomGenerator seeds;
    int opened = 0;
};

/// The report, the reorder list and the reorder notice of a host, as a random user meets them: each opens a window of
/// its own, lets something happen, and is closed; some throw. `shared` must outlive the registry's use.
void registerWindows(ObjectRegistry &registry, HostWindows &shared);

/// One of them.
class HostWindow : public QObject
{
    Q_OBJECT

public:
    explicit HostWindow(HostWindows &shared) : m_shared(shared) {}

public Q_SLOTS:
    void AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString &folder, bool third,
                        QString &msgTitle, bool fifth, bool mayEditStock, bool &canSettings, QString &loggedUser);
    void Show(int modal, QWidget *owner);

private:
    void openWindow(QWidget *owner);

    HostWindows &m_shared;
};

} // namespace harrowby::test
