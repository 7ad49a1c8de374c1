// SPDX-License-Identifier: MIT
#include "ui/inventory.h"

#include "basic/logging.h"
#include "basic/numbers.h"
#include "basic/values.h"
#include "host/inv_basic.h"
#include "store/recordset.h"
#include "store/statements.h"
#include "ui/focus_order.h"
#include "ui/widgets/link_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/upper_case_typing.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Shown until a shop enters its own address for the daily report.
constexpr auto placeholderEmail = "reports@example.com"_L1;

/// Whether a saved setting is the Boolean false: a number equal to 0, or "False".
bool isFalse(const QString &saved)
{
    const std::optional<double> number = wholeNumber(saved);
    return number ? *number == 0.0 : saved.compare("false"_L1, Qt::CaseInsensitive) == 0;
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

class Inventory::HandlerScope
{
public:
    explicit HandlerScope(Inventory &form) : m_form(form)
    {
        if (m_form.m_runningHandlers++ == 0)
            m_form.m_breather.rest();
    }
    ~HandlerScope()
    {
        --m_form.m_runningHandlers;
        m_form.releaseIfClosed();
    }
    HandlerScope(const HandlerScope &) = delete;
    HandlerScope &operator=(const HandlerScope &) = delete;

private:
    Inventory &m_form;
};

template <typename Handler>
void Inventory::run(Handler &&handler) noexcept
{
    const HandlerScope scope(*this);
    try {
        std::forward<Handler>(handler)();
    } catch (const std::exception &error) {
        qCWarning(lcWindow, "A handler ended early: %s", error.what());
    } catch (...) {
        qCWarning(lcWindow, "A handler ended early");
    }
}

Inventory::Inventory(const Platform &platform, QWidget *parent) :
    QMainWindow(parent), m_platform(platform), m_controls(*this)
{
    connectControls();
}

Inventory::~Inventory()
{
    // Controls that lose the focus while they are taken down must not enter a handler any more.
    for (QObject *control : findChildren<QObject *>())
        control->disconnect(this);
}

Inventory *Inventory::defaultInstance()
{
    static QPointer<Inventory> instance;
    if (!instance || instance->m_closed) {
        instance = new Inventory(Platform::native());
        instance->load();
    }
    return instance;
}

void Inventory::load()
{
    m_loading = true;
    run([this] { loadForm(); });
    // Also when a step of loading ended early: nobody has logged in.
    m_state.IsLoggedIn = false;
    m_loading = false;
}

void Inventory::present()
{
    if (m_loading)
        return; // asked for in the middle of loading: whoever loads it shows it
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

void Inventory::connectControls()
{
    connectWindow();
    connectLogin();
    connectSelling();
    connectCustomSale();
    connectStock();
    connectReorder();
    connectSettings();
}

void Inventory::connectWindow()
{
    m_controls.TabStrip1->beforeClick = [this] {
        bool mayChange = false;
        run([&] { mayChange = mayChangeWorkArea(); });
        return mayChange;
    };
    connect(m_controls.TabStrip1, &TabStrip::tabClicked, this, [this] { run([this] { chooseWorkArea(); }); });
    connect(m_controls.TabStrip2, &TabStrip::tabClicked, this, [this] { run([this] { chooseSidePanel(); }); });
    onClick(m_controls.Command10, [this] { close(); });
    onClick(m_controls.Command20, [this] { showHelp(); });
    onClick(m_controls.Command11, [this] { clearActivityLog(); });
    connectKeys();
    // Of the dashboard's elements only this one does anything when it is clicked.
    connect(static_cast<LinkLabel *>(m_controls.Label6.at(9)), &LinkLabel::clicked, this,
            [this] { run([this] { openReorderList(9); }); });
}

void Inventory::connectLogin()
{
    new UpperCaseTyping(m_controls.Text3);
    new UpperCaseTyping(m_controls.Combo16);
    connect(m_controls.Text3, &QLineEdit::returnPressed, this, [this] { leadTo(*m_controls.Text4); });
    connect(m_controls.Text4, &QLineEdit::returnPressed, this, [this] { run([this] { logIn(); }); });
    onClick(m_controls.Command28, [this] { logIn(); });
    onClick(m_controls.Command29, [this] { clearLogin(); });
    onClick(m_controls.Command27, [this] { logOut(); });
}

void Inventory::connectSelling()
{
    for (std::size_t i = 0; i < m_controls.Command1.size(); ++i)
        onClick(m_controls.Command1.at(i), [this, i] { sellQuickly(static_cast<int>(i)); });
    onClick(m_controls.CmdNext, [this] { nextQuickSales(); });
    onClick(m_controls.CmdPrev, [this] { previousQuickSales(); });
    onChangeAndClick(m_controls.Combo1, [this] { quickSaleCategoryChanged(); });
    connect(m_controls.LV3, &RowList::rowOpened, this, [this] { run([this] { changeLinePrice(); }); });
    onClick(m_controls.Command12, [this] { deleteCartLine(); });
    onClick(m_controls.Command13, [this] { clearCart(); });
    onClick(m_controls.Command14, [this] { purchaseCart(); });
    onClick(m_controls.Command25, [this] { undoLastPurchase(); });
    onClick(m_controls.Command19, [this] { openSalesReport(); });
}

void Inventory::connectCustomSale()
{
    connect(m_controls.Combo2, &PickList::picked, this, [this] { run([this] { customSaleCategoryChosen(); }); });
    connect(m_controls.Combo3, &PickList::picked, this, [this] { run([this] { customSaleItemChosen(); }); });
    onChangeAndClick(m_controls.Combo4, [this] { customSaleQuantityChanged(); });
    onClick(m_controls.Command15, [this] { addCustomItem(); });
    onClick(m_controls.Command8, [this] { searchStock(); });
    onClick(m_controls.Command9, [this] { m_controls.Frame11->hide(); });
    onClick(m_controls.Command21, [this] { selectSearchResult(); });
    connect(m_controls.LV2, &RowList::rowOpened, this, [this] { run([this] { selectSearchResult(); }); });
    for (std::size_t i = 0; i < m_controls.Command30.size(); ++i)
        onClick(m_controls.Command30.at(i), [this, i] { pressKey(static_cast<int>(i)); });
    onClick(m_controls.Command31, [this] { toggleKeypad(); });
}

void Inventory::connectStock()
{
    new UpperCaseTyping(m_controls.Combo7);
    connect(m_controls.Combo8, &PickList::left, this, [this] { run([this] { formatStockCost(); }); });
    onClick(m_controls.Command16, [this] { saveStock(); });
    onClick(m_controls.Command26, [this] { startNewStock(); });
    onClick(m_controls.Command5, [this] { editSelectedStock(); });
    onClick(m_controls.Command6, [this] { deleteStock(); });
    onClick(m_controls.Command7, [this] { refreshStock(); });
    connect(m_controls.LV, &RowList::rowChosen, this, [this] { run([this] { chooseStockRow(); }); });
}

void Inventory::connectReorder()
{
    connect(m_controls.Combo12, &PickList::picked, this, [this] { run([this] { reorderCategoryChosen(); }); });
    onChangeAndClick(m_controls.Combo11, [this] { showReorderItem(); });
    onClick(m_controls.Command17, [this] { reorderStock(); });
    onClick(m_controls.Command23, [this] { undoReorder(); });
    onClick(m_controls.Command24, [this] { RefreshDashboard(); });
}

void Inventory::connectSettings()
{
    onClick(m_controls.Command18, [this] { saveSettings(); });
    onClick(m_controls.Check5, [this] { receiptChoiceChanged(); });
    onClick(m_controls.Command2, [this] { addCategory(); });
    onClick(m_controls.Command22, [this] { renameCategory(); });
    onClick(m_controls.Command3, [this] { deleteCategory(); });
    onClick(m_controls.Command4, [this] { deletePurchase(); });
}

template <typename Handler>
void Inventory::onClick(QAbstractButton *button, Handler handler)
{
    connect(button, &QAbstractButton::clicked, this, [this, handler] { run(handler); });
}

template <typename Handler>
void Inventory::onChangeAndClick(PickList *list, Handler handler)
{
    const auto entered = [this, handler] { run(handler); };
    connect(list, &PickList::entryTextChanged, this, entered);
    // A pick that changed the text has done the work already.
    connect(list, &PickList::pickedAgain, this, entered);
}

void Inventory::loadForm()
{
    m_controls.StatusBar1_1->setText(u"Login: No User"_s);
    m_state.IsLoggedIn = true; // on purpose: the tab handlers below must not be refused
    m_controls.Frame11->hide();
    m_controls.Frame12->show();
    m_controls.Frame12->raise();
    m_state.CartCount = 0;
    fillPickLists();
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
    readStoreSettings();
    showSettings();
    leadTo(*m_controls.Text3);
}

void Inventory::fillPickLists()
{
    for (int number = 0; number <= 100; ++number) {
        for (PickList *list :
             {m_controls.Combo4, m_controls.Combo8, m_controls.Combo10, m_controls.Combo13, m_controls.Combo14})
            list->addEntry(QString::number(number));
        m_breather.breathe();
    }
    m_controls.Combo4->setEntryText(u"0"_s);
    m_controls.Combo15->addEntry(u"Enabled"_s);
    m_controls.Combo15->addEntry(u"Disabled"_s);
    m_controls.Combo15->setEntryText(u"Enabled"_s);
    m_controls.Combo6->addEntry(u"(Auto ID)"_s);
    m_controls.Combo6->setEntryText(u"(Auto ID)"_s);
}

void Inventory::readStoreSettings()
{
    DbRecordset settings;
    settings.Open(statements::storeSettings(), connection());
    if (settings.RecordCount() == 0) {
        settings.AddNew();
        settings.Field(u"EmailAddress"_s).assign(QString(placeholderEmail));
        settings.Field(u"Email"_s).assign(std::int64_t{0});
        settings.Field(u"ShowDetails"_s).assign(std::int64_t{1});
        settings.Field(u"Promptreorder"_s).assign(std::int64_t{1});
        settings.Field(u"AutoPurchaseCart"_s).assign(std::int64_t{0});
        settings.Update();
    }
    // The column "Email" is never read back: the check box follows the user's own saved setting.
    readEmailReportFlag();
    readFlag(settings, u"ShowDetails"_s, m_state.ShowDetailsFlag);
    readEmailAddress(settings, m_state.ReportEmailAddress);
    readFlag(settings, u"Promptreorder"_s, m_state.PromptReorderFlag);
    readFlag(settings, u"AutoPurchaseCart"_s, m_state.HideFinishedFlag);
}

void Inventory::readEmailReportFlag()
{
    const QString saved = m_platform.settings->get(u"Option"_s, u"Emailreport"_s, u"1"_s);
    m_state.EmailReportFlag = valueInt16(DbValue(saved)).value_or(m_state.EmailReportFlag);
}

void Inventory::showSettings()
{
    m_controls.Check4->setChecked(m_state.EmailReportFlag != 0);
    m_controls.Check3->setChecked(m_state.ShowDetailsFlag != 0);
    m_controls.Text2->setText(m_state.ReportEmailAddress);
    m_controls.Check1->setChecked(m_state.PromptReorderFlag != 0);
    m_controls.Check2->setChecked(m_state.HideFinishedFlag != 0);
    const QString saved = m_platform.settings->get(u"Option"_s, u"UsePOSforReceipt"_s, u"1"_s);
    const bool useReceipts = !isFalse(saved);
    m_controls.Check5->setChecked(useReceipts);
    m_controls.Combo9->setEnabled(useReceipts);
}

void Inventory::closeEvent(QCloseEvent *event)
{
    if (!m_closed && (m_askingToClose || !confirmClose())) {
        event->ignore();
        return;
    }
    m_closed = true;
    event->accept();
    releaseIfClosed();
}

bool Inventory::confirmClose()
{
    m_askingToClose = true;
    bool confirmed = false;
    run([&] {
        // The cart never counts itself into CartCount, so the first text is what a full cart gets too.
        confirmed =
            ask(m_state.CartCount >= 1 ? u"There are item(s) in the cart, do you still want to Close Inventory?"_s
                                       : u"Close Inventory?"_s,
                box::Ask) == Answer::Yes;
    });
    m_askingToClose = false;
    return confirmed;
}

void Inventory::releaseIfClosed()
{
    if (m_closed && m_runningHandlers == 0)
        deleteLater();
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
    finishWalks(); // a box may stay open for long
    const Answer answer = m_platform.boxes->message(this, text, style, m_state.MsgTitle);
    m_breather.rest();
    return answer;
}

QString Inventory::askForText(const QString &prompt, const QString &title, const QString &initial)
{
    finishWalks();
    const QString answer = m_platform.boxes->input(this, prompt, title, initial);
    m_breather.rest();
    return answer;
}

void Inventory::warn(const QString &text)
{
    ask(text, box::Exclamation);
}

void Inventory::refusePrivilege()
{
    warn(u"User ["_s + m_state.LoggedUser + u"] doesn't have this privilege!"_s);
}

void Inventory::showForeignWindow(const QString &classId)
{
    // The component has no such window itself; where a host has registered none, nothing happens.
    finishWalks();
    const std::unique_ptr<QObject> window = m_platform.objects->create(classId);
    if (!window)
        return;
    constexpr int modal = 1;
    QWidget *owner = this;
    if (!QMetaObject::invokeMethod(window.get(), "Show", Q_ARG(int, modal), Q_ARG(QWidget *, owner)))
        qCWarning(lcWindow, "%s cannot be shown", qPrintable(classId));
}

} // namespace harrowby
