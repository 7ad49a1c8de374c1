// SPDX-License-Identifier: MIT
#include "app/office/office_pages.h"

#include "app/backup/backup_page.h"
#include "app/backup/good_backups.h"
#include "app/exchange/catalogue_page.h"
#include "app/labels/labels_page.h"
#include "app/office/activity_page.h"
#include "app/office/cash_page.h"
#include "app/office/codes_page.h"
#include "app/office/office_door.h"
#include "app/office/receipt_page.h"
#include "app/office/shop_page.h"
#include "app/office/users_page.h"
#include "app/readers/reader_settings_page.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Context = OfficeContext;
using enum OfficeRight;

const auto shopGroup = u"Shop"_s;
const auto stockGroup = u"Stock"_s;
const auto keepingGroup = u"Keeping"_s;
const auto machineGroup = u"This Machine"_s;

/// A page that takes no more than these.
template <typename Page>
OfficePage *makeWithSettings(const Context &context, QWidget *parent)
{
    return new Page(context.deeds(), context.settings, parent);
}

OfficePageEntry usersEntry()
{
    return {u"&Users"_s,
            shopGroup,
            Administrator,
            u"Who may log in, and what each may do"_s,
            {{u"rights role cashier staff manager person permission"_s, {}},
             {u"new user cashier person"_s, u"addUser"_s},
             {u"forgotten password reset"_s, u"changePassword"_s}},
            [](const Context &c, QWidget *parent) { return new UsersPage(UsersTable(c.deeds(), c.door), parent); }};
}

OfficePageEntry receiptEntry()
{
    return {u"&Receipt"_s,
            shopGroup,
            Administrator,
            u"Title, address and currency of the receipts"_s,
            {{u"name of the shop header"_s, u"receiptTitle"_s},
             {u"money symbol"_s, u"receiptCurrency"_s},
             {u"mail"_s, u"emailReport"_s}},
            makeWithSettings<ReceiptPage>};
}

OfficePageEntry cashEntry()
{
    return {u"Ca&sh"_s,
            shopGroup,
            Administrator,
            u"Ways of paying, notes and the drawer"_s,
            {{u"payment money"_s, {}},
             {u"card voucher cheque"_s, u"paymentWays"_s},
             {u"banknotes bills"_s, u"cashNotes"_s},
             {u"drawer kick pin plug pulse"_s, u"drawerSettings"_s},
             {u"open payments without a purchase"_s, u"openPayments"_s}},
            makeWithSettings<CashPage>};
}

OfficePageEntry shopEntry()
{
    return {u"S&hop"_s,
            shopGroup,
            Administrator,
            u"What holds for all tills"_s,
            {{u"search part of a name"_s, u"searchAnywhere"_s}},
            [](const Context &c, QWidget *parent) {
                return new ShopPage(SearchChoice(*c.store.records, c.store.isOwn), c.deeds(), c.store.file == nullptr,
                                    parent);
            }};
}

OfficePageEntry catalogueEntry()
{
    return {u"Catalo&gue"_s,
            stockGroup,
            Stock,
            u"Items, categories and codes: in from lists, and out into lists"_s,
            {{u"import bring in spreadsheet CSV list upload items"_s, u"beginImport"_s},
             {u"export save download spreadsheet CSV list purchases"_s, u"beginExport"_s},
             {u"take back undo import"_s, u"imports"_s}},
            [](const Context &c, QWidget *parent) {
                ImportDesk desk;
                desk.user = c.user.name;
                desk.who = c.user.name;
                desk.place = officePlace;
                desk.store = c.store.address;
                return new CataloguePage(
                    *c.store.records, desk, c.user.isAdministrator, [c] { return c.obstacle(); }, parent);
            }};
}

OfficePageEntry codesEntry()
{
    return {u"C&odes"_s,
            stockGroup,
            Stock,
            u"The codes of items that readers read"_s,
            {{u"barcode EAN UPC GTIN scan"_s, {}}, {u"scale weight price in the code"_s, u"inStoreCodes"_s}},
            [](const Context &c, QWidget *parent) { return new CodesPage(c.deeds(), parent); }};
}

OfficePageEntry backupEntry()
{
    return {u"Bac&kup"_s,
            keepingGroup,
            Administrator,
            u"Copies of the store"_s,
            {{u"save copy safe stick"_s, u"startBackup"_s},
             {u"restore bring back"_s, u"restoreBackup"_s},
             {u"automatic timer daily night systemd"_s, u"nightlyBackup"_s}},
            [](const Context &c, QWidget *parent) {
                auto *page = new BackupPage(c.deeds(), c.store.address, c.settings, parent);
                page->watchStore(c.loss);
                return page;
            },
            [](const Context &c) { return backupWarning(*c.store.records, QDateTime::currentDateTimeUtc()); }};
}

OfficePageEntry activityEntry()
{
    return {u"Activit&y"_s,
            keepingGroup,
            Administrator,
            u"Who did what, and when"_s,
            {{u"log history journal audit"_s, {}},
             {u"price changed by hand deleted undone drawer opened login refused"_s, u"activityKind"_s},
             {u"export CSV file"_s, u"saveActivity"_s}},
            [](const Context &c, QWidget *parent) { return new ActivityPage(c.deeds(), c.store.address, parent); }};
}

OfficePageEntry labelsEntry()
{
    return {u"&Labels"_s,
            stockGroup,
            Stock,
            u"Labels with name, price and code"_s,
            {{u"price tag sticker barcode EAN UPC"_s, {}},
             {u"roll sheet A4"_s, u"labelPaper"_s},
             {u"half used sheet position"_s, u"labelPlace"_s},
             {u"offset millimetres margin dots dpi"_s, u"adjustLabels"_s},
             {u"category without a code last import in stock"_s, u"addLabelItems"_s}},
            [](const Context &c, QWidget *parent) {
                return new LabelsPage(c.deeds(), c.store.address, c.settings, parent);
            }};
}

OfficePageEntry readersEntry()
{
    return {u"Read&ers"_s,
            machineGroup,
            Administrator,
            u"The code readers of this machine"_s,
            {{u"scanner barcode"_s, {}}, {u"serial port USB"_s, u"readerPath"_s}, {u"baud"_s, u"readerSpeed"_s}},
            [](const Context &c, QWidget *parent) {
                auto *page = new ReaderSettingsPage(c.settings, foundDevices(), parent);
                QObject::connect(page, &ReaderSettingsPage::saved, page, [deeds = c.deeds()](const QString &what) {
                    (void)deeds.add(deed::settingChanged, what); // a failure has been logged
                });
                return page;
            }};
}

} // namespace

SignedDeeds OfficeContext::deeds() const
{
    return {*store.records, officePlace, user.name};
}

QString OfficeContext::obstacle() const
{
    const QString lost = loss ? loss() : QString();
    return lost.isEmpty() && door ? door->refusal() : lost;
}

QString OfficePageEntry::title() const
{
    return QString(caption).remove(u'&');
}

const QList<OfficePageEntry> &officePages()
{
    static const QList<OfficePageEntry> pages = {
        usersEntry(),     receiptEntry(),  cashEntry(),   shopEntry(), // Shop
        catalogueEntry(), codesEntry(),    labelsEntry(),              // Stock
        backupEntry(),    activityEntry(),                             // Keeping
        readersEntry(),                                                // This Machine
    };
    return pages;
}

QList<OfficePageEntry> officePagesFor(const OfficeUser &user)
{
    QList<OfficePageEntry> pages;
    std::copy_if(officePages().cbegin(), officePages().cend(), std::back_inserter(pages),
                 [&user](const OfficePageEntry &entry) {
                     return entry.right == Stock ? user.mayKeepStock : user.isAdministrator;
                 });
    return pages;
}

} // namespace harrowby::app
