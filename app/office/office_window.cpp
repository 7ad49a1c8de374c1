// SPDX-License-Identifier: MIT
#include "app/office/office_window.h"

#include "app/backup/backup_page.h"
#include "app/boxes/office_box.h"
#include "app/office/cash_page.h"
#include "app/office/codes_page.h"
#include "app/office/receipt_page.h"
#include "app/office/shop_page.h"
#include "app/office/store_access_line.h"
#include "app/office/touch_tab_bar.h"
#include "app/office/users_page.h"
#include "app/readers/reader_settings_page.h"
#include "app/records/sqlite_records.h"
#include "app/shop/failure_text.h"
#include "app/shop/schema.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize usualSize(1000, 680);

} // namespace

OfficeWindow::OfficeWindow(sqlite3 *database, const QString &store, const OfficeSettings &settings, QWidget *parent) :
    QDialog(parent), m_records(std::make_unique<SqliteRecords>(database))
{
    setWindowTitle(u"Store"_s);
    setWindowModality(Qt::WindowModal); // a notice beside it can be dismissed
    setWindowFlag(Qt::WindowMinMaxButtonsHint);
    enlargeFont(*this);
    m_receipt = new ReceiptPage(settings, this);
    m_readers = new ReaderSettingsPage(settings, foundDevices(), this);
    m_backup = new BackupPage(store, settings, this);
    m_cash = new CashPage(*m_records, settings, this);
    m_shop = new ShopPage(SearchChoice(*m_records, isOwnStore(database)), this);
    layOut(new UsersPage(database, SignedDeeds(*m_records, officePlace, {}), this), store);
    dressDialog(*this);
    resize(usualSize.boundedTo(roomFor(*this)));
}

OfficeWindow::~OfficeWindow() = default;

void OfficeWindow::layOut(QWidget *users, const QString &store)
{
    auto *tabs = new TouchTabBar(this);
    tabs->setObjectName(u"officeTabs"_s);
    tabs->setAccessibleName(u"Pages"_s);
    auto *pages = new QStackedWidget(this);
    tabs->addTab(u"&Users"_s);
    pages->addWidget(users);
    tabs->addTab(u"&Receipt"_s);
    pages->addWidget(m_receipt);
    tabs->addTab(u"Bac&kup"_s);
    pages->addWidget(m_backup);
    tabs->addTab(u"C&odes"_s);
    pages->addWidget(new CodesPage(*m_records, this));
    tabs->addTab(u"Ca&sh"_s);
    pages->addWidget(m_cash);
    tabs->addTab(u"S&hop"_s);
    pages->addWidget(m_shop);
    tabs->addTab(u"Read&ers"_s);
    pages->addWidget(m_readers);
    connect(tabs, &QTabBar::currentChanged, pages, &QStackedWidget::setCurrentIndex);

    auto *close = new QPushButton(u"C&lose"_s, this);
    close->setObjectName(u"closeOffice"_s);
    connect(close, &QPushButton::clicked, this, &OfficeWindow::reject);
    auto *top = new QHBoxLayout;
    top->addWidget(tabs, 1);
    top->addWidget(close);
    auto *rows = new QVBoxLayout(this);
    rows->addLayout(top);
    rows->addWidget(new StoreAccessLine(store, this));
    rows->addWidget(pages, 1);
    rows->addWidget(makeOfficeText(this, wrappingPath(store)));
    // No default button: Enter in an entry presses the button beside it only.
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(false);
}

void OfficeWindow::watchStore(const std::function<QString()> &loss)
{
    m_backup->watchStore(loss);
}

void OfficeWindow::reject()
{
    if (m_backup->isRunning() && !askInOffice(this, u"A backup is being made. Stop it?"_s, u"&Stop It"_s))
        return;
    if (m_receipt->hasChanges() &&
        !askInOffice(this, u"What you have typed for the receipt is not saved. Discard it?"_s, u"&Discard It"_s))
        return;
    if (m_readers->hasChanges() &&
        !askInOffice(this, u"What you have changed about the code readers is not saved. Discard it?"_s,
                     u"&Discard It"_s))
        return;
    if (m_cash->hasChanges() &&
        !askInOffice(this, u"What you have changed about cash is not saved. Discard it?"_s, u"&Discard It"_s))
        return;
    QDialog::reject();
}

} // namespace harrowby::app
