// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <QDialog>

#include <functional>
#include <memory>

struct sqlite3;

namespace harrowby::app {

class BackupPage;
class CashPage;
class ReaderSettingsPage;
class ReceiptPage;
class Records;
class ShopPage;

/// The "Store" window: users and rights, the receipt, the backup, the codes of items, cash, what holds for all
/// tills of the shop, the code readers of this machine.
class OfficeWindow final : public QDialog
{
    Q_OBJECT

public:
    /// The database must outlive it; `store` is its file.
    OfficeWindow(sqlite3 *database, const QString &store, const OfficeSettings &settings, QWidget *parent = nullptr);
    ~OfficeWindow() override;

    /// `loss` says what has happened to the store file once it is lost, and nothing before: no backup counts then.
    void watchStore(const std::function<QString()> &loss);

    /// Asks before a backup is stopped or an entry lost.
    void reject() override;

private:
    void layOut(QWidget *users, const QString &store);

    std::unique_ptr<Records> m_records;
    ReceiptPage *m_receipt = nullptr;
    ReaderSettingsPage *m_readers = nullptr;
    BackupPage *m_backup = nullptr;
    CashPage *m_cash = nullptr;
    ShopPage *m_shop = nullptr;
};

} // namespace harrowby::app
