// SPDX-License-Identifier: MIT
#include "ui/inventory.h"

#include "basic/stock_entry_rules.h"
#include "basic/stock_id.h"
#include "store/inv_basic.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/counter/host_link.h"
#include "ui/focus_order.h"
#include "ui/settings/settings.h"
#include "ui/widgets/pick_list.h"

#include <QCloseEvent>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

void fillPickLists(const Controls &controls, Breather &breather)
{
    for (int number = 0; number <= 100; ++number) {
        for (PickList *list : {controls.Combo4, controls.Combo8, controls.Combo10, controls.Combo13, controls.Combo14})
            list->addEntry(QString::number(number));
        breather.breathe();
    }
    controls.Combo4->setEntryText(u"0"_s);
    controls.Combo15->addEntry(enabledText);
    controls.Combo15->addEntry(disabledText);
    controls.Combo15->setEntryText(enabledText);
    controls.Combo6->addEntry(automaticIdText);
    controls.Combo6->setEntryText(automaticIdText);
}

} // namespace

Inventory::Inventory(const Platform &platform, QWidget *parent) :
    QMainWindow(parent), m_platform(platform), m_controls(*this), m_fence(*this, m_breather)
{
    connectControls();
}

Inventory::~Inventory()
{
    // Controls that lose the focus during destruction must not call handlers.
    for (QObject *control : findChildren<QObject *>())
        control->disconnect(this);
    HostLink::instance().close(*this);
    HostLink::instance().release();
}

Inventory *Inventory::defaultInstance()
{
    static QPointer<Inventory> instance;
    if (!instance || instance->m_fence.isClosed()) {
        instance = new Inventory(Platform::native());
        instance->load();
    }
    return instance;
}

void Inventory::load()
{
    const OneAtATime::Turn loading = m_underWay.loading.begin();
    m_fence.run([this] { loadForm(); });
    // Also when loading has ended early by an exception: no user is logged in.
    m_state.login.IsLoggedIn = false;
    if (!m_fence.isClosed())
        HostLink::instance().open(*this);
}

void Inventory::present()
{
    if (m_underWay.loading.isRunning())
        return; // called while it loads: the outer call shows it
    Qt::WindowStates wanted = windowState() & ~Qt::WindowMinimized;
    const QSize room = screen()->availableSize();
    // A window of the screen's own size would hang over its edge by the height of the title bar.
    if (width() >= room.width() || height() >= room.height())
        wanted |= Qt::WindowMaximized;
    setWindowState(wanted);
    show();
    raise();
    activateWindow();
}

void Inventory::loadForm()
{
    m_controls.StatusBar1_1->setText(u"Login: No User"_s);
    m_state.login.IsLoggedIn = true; // Intended: else the gates of the tab handlers below refuse
    m_controls.Frame11->hide();
    m_controls.Frame12->show();
    m_controls.Frame12->raise();
    m_state.CartCount = 0;
    fillPickLists(m_controls, m_breather);
    LoadCategory();
    LoadCategories();
    LoadPrinter();
    chooseWorkArea();
    chooseSidePanel();
    UpdateCart();
    RefreshDashboard();
    m_controls.Combo1->setEntryText(statements::allCategories);
    m_controls.Combo2->setEntryText(statements::allCategories);
    m_controls.Combo12->setEntryText(statements::allCategories);
    readSettings();
    leadTo(*m_controls.Text3);
}

void Inventory::readSettings()
{
    m_state.settings = readStoreSettings(connection(), m_state.settings);
    m_state.settings.EmailReportFlag =
        savedEmailReportFlag(*m_platform.settings).value_or(m_state.settings.EmailReportFlag);
    showSettings(m_controls, m_state.settings, savedPrintReceipt(*m_platform.settings));
}

/// What the window shows without being asked, where a database that was gone has left it old or empty.
void Inventory::readAgain()
{
    if (!m_state.settings.areRead)
        readSettings();
    if (!m_state.areCategoriesRead || !m_state.areCategoriesListed) {
        const QSignalBlocker chosenByNobody(m_controls.Combo1);
        LoadCategory();
        LoadCategories();
    }
    RefreshDashboard();
}

void Inventory::closeEvent(QCloseEvent *event)
{
    if (!m_fence.isClosed() && (m_underWay.closeQuestion.isRunning() || !confirmClose())) {
        event->ignore();
        return;
    }
    event->accept();
    m_fence.run([this] {
        HostLink::instance().close(*this);
        m_fence.close();
    });
}

bool Inventory::confirmClose()
{
    const OneAtATime::Turn asking = m_underWay.closeQuestion.begin();
    bool confirmed = false;
    m_fence.run([&] {
        // Intended: the cart never changes CartCount, so a full cart gets the second text too.
        confirmed =
            ask(m_state.CartCount >= 1 ? u"There are item(s) in the cart, do you still want to Close Inventory?"_s
                                       : u"Close Inventory?"_s,
                box::Ask) == Answer::Yes;
    });
    return confirmed;
}

void Inventory::showHelp()
{
    ask(u"To Start using Harrowby Inventory Tool, kindly login and enter Stock Category in Settings. Afterwards, "
        "Add/Edit Stock before purchases can be made. To Login you must have the priviledge to use Inventory Tool "
        "under "
        "Harrowby Option > User Tab. \r\n\r\nFor more information, kindly visit https://harrowby.example/inventory or "
        "email us at support@harrowby.example."_s,
        box::Information);
}

std::shared_ptr<DbConnection> Inventory::connection() const
{
    return InvBasic::connection();
}

Answer Inventory::ask(const QString &text, int style)
{
    finishWalks(connection()); // a box may stay open for long
    const OpenBoxes::Turn open = m_underWay.boxes.open();
    const Answer answer = m_platform.boxes->message(this, text, style, m_state.MsgTitle);
    m_breather.rest();
    return answer;
}

QString Inventory::askForText(const QString &prompt, const QString &title, const QString &initial)
{
    finishWalks(connection());
    const OpenBoxes::Turn open = m_underWay.boxes.open();
    const QString answer = m_platform.boxes->input(this, prompt, title, initial);
    m_breather.rest();
    return answer;
}

void Inventory::warn(const QString &text)
{
    ask(text, box::Exclamation);
}

} // namespace harrowby
