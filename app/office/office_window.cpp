// SPDX-License-Identifier: MIT
#include "app/office/office_window.h"

#include "app/boxes/office_box.h"
#include "app/boxes/office_page.h"
#include "app/office/office_door.h"
#include "app/office/page_list.h"
#include "app/office/store_access_line.h"
#include "app/shop/failure_text.h"
#include "basic/store_address.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize usualSize(1000, 680);
constexpr QSize smallestSize(760, 540);
constexpr int sideWidth = 208;
constexpr int sideFrom = 960; ///< width of a window that has room for side and page

/// The first control of the page that takes the focus.
QWidget *firstOf(const QWidget &page)
{
    for (QWidget *next = page.nextInFocusChain(); next != &page; next = next->nextInFocusChain()) {
        if (page.isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) != 0 && next->isEnabled() &&
            next->isVisibleTo(&page))
            return next;
    }
    return nullptr;
}

void bringIntoView(QWidget &control)
{
    for (QWidget *around = control.parentWidget(); around != nullptr; around = around->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(around))
            area->ensureWidgetVisible(&control);
    }
}

} // namespace

OfficeWindow::OfficeWindow(const OfficeStore &store, const OfficeSettings &settings, const OfficeUser &user,
                           QWidget *parent) :
    QDialog(parent),
    m_context{store, settings, user, [this] { return m_loss ? m_loss() : QString(); },
              std::make_shared<DoorWatch>(*store.records, user)}
{
    setWindowTitle(u"Store"_s);
    setWindowModality(Qt::WindowModal); // a notice beside it can be dismissed
    setWindowFlag(Qt::WindowMinMaxButtonsHint);
    enlargeFont(*this);
    for (const OfficePageEntry &entry : officePagesFor(user))
        m_pages.append({entry, nullptr});
    layOut();
    addShortcuts();
    dressDialog(*this);
    turnTo(0);
    m_side->setFocus(); // no entry, which would bring the keyboard onto the screen
    setMinimumSize(smallestSize);
    resize(usualSize.boundedTo(roomFor(*this)));
}

void OfficeWindow::layOut()
{
    QList<OfficePageEntry> entries;
    for (const BuiltPage &page : std::as_const(m_pages))
        entries << page.entry;
    m_side = new PageList(
        entries, [this](const QString &typed) { return find(typed); }, this);
    connect(m_side, &PageList::turnedTo, this, &OfficeWindow::turnTo);
    connect(m_side, &PageList::chosen, this, &OfficeWindow::goTo);
    connect(m_side, &PageList::left, this, &OfficeWindow::leaveSide);
    m_content = makeContent();
    auto *columns = new QHBoxLayout(this);
    columns->setSpacing(12);
    columns->setSizeConstraint(QLayout::SetNoConstraint); // the side goes before the window stops becoming narrower
    columns->addWidget(m_side);
    columns->addWidget(m_content, 1);
}

QWidget *OfficeWindow::makeContent()
{
    auto *content = new QWidget(this);
    m_stack = new QStackedWidget(content);
    auto *rows = new QVBoxLayout(content);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addLayout(makeHead());
    const QString &store = m_context.store.address;
    if (m_context.user.isAdministrator && !isServer(store))
        rows->addWidget(new StoreAccessLine(store, content));
    rows->addWidget(m_stack, 1);
    auto *foot = makeOfficeText(content, u"%1 \u2013 %2"_s.arg(m_context.user.name, wrappingPath(storeWords(store))));
    foot->setObjectName(u"officeFoot"_s);
    rows->addWidget(foot);
    return content;
}

QHBoxLayout *OfficeWindow::makeHead()
{
    m_menu = new QPushButton(u"\u2630 Pages"_s, this);
    m_menu->setObjectName(u"officeMenu"_s);
    m_menu->setAccessibleName(u"Pages"_s);
    m_menu->setAutoDefault(false);
    connect(m_menu, &QPushButton::clicked, this, [this] { openSide(true); });
    m_title = new QLabel(this);
    m_title->setObjectName(u"officeTitle"_s);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setProperty("styleWord", u"title"_s);
    auto *close = new QPushButton(u"Close"_s, this);
    close->setObjectName(u"closeOffice"_s);
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &OfficeWindow::reject);
    auto *head = new QHBoxLayout;
    head->setSpacing(12);
    head->addWidget(m_menu);
    head->addWidget(m_title, 1);
    addWarnings(*head);
    head->addWidget(close);
    return head;
}

/// In the head, where they cost no height of a low window.
void OfficeWindow::addWarnings(QHBoxLayout &head)
{
    for (const BuiltPage &page : std::as_const(m_pages)) {
        if (!page.entry.warning)
            continue;
        auto *go = new QPushButton(this);
        go->setObjectName(u"warningOf"_s + page.entry.title());
        go->setAutoDefault(false);
        connect(go, &QPushButton::clicked, this, [this, title = page.entry.title()] { showPage(title); });
        head.addWidget(go);
    }
    followWarnings();
}

void OfficeWindow::followWarnings()
{
    for (const BuiltPage &page : std::as_const(m_pages)) {
        auto *go = findChild<QPushButton *>(u"warningOf"_s + page.entry.title());
        if (go == nullptr)
            continue;
        const QString warning = page.entry.warning(m_context);
        go->setText(u"\u26a0 "_s + warning);
        go->setAccessibleName(u"%1, go to %2"_s.arg(warning, page.entry.title()));
        go->setVisible(!warning.isEmpty());
    }
}

void OfficeWindow::addShortcuts()
{
    for (qsizetype i = 0; i < m_pages.size(); ++i) {
        auto *letter = new QShortcut(QKeySequence::mnemonic(m_pages.at(i).entry.caption), this);
        connect(letter, &QShortcut::activated, this, [this, i] { goTo({i, nullptr, {}, {}}, true); });
    }
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, &OfficeWindow::beginSearch);
    connect(new QShortcut(Qt::CTRL | Qt::Key_PageDown, this), &QShortcut::activated, this, [this] { step(1); });
    connect(new QShortcut(Qt::CTRL | Qt::Key_PageUp, this), &QShortcut::activated, this, [this] { step(-1); });
}

OfficePage *OfficeWindow::built(qsizetype page)
{
    BuiltPage &wanted = m_pages[page];
    if (wanted.page != nullptr)
        return wanted.page;
    OfficePage *made = wanted.entry.make(m_context, m_stack);
    wanted.page = made;
    made->setAccessibleName(wanted.entry.title()); // said when the focus comes onto the page
    dressPart(*made);
    // No default button: Enter in an entry presses the button beside it only.
    for (QPushButton *button : made->findChildren<QPushButton *>())
        button->setAutoDefault(false);
    connect(made, &OfficePage::warningChanged, this, &OfficeWindow::followWarnings);
    connect(made, &OfficePage::restoreAsked, this, &OfficeWindow::leaveForRestore, Qt::QueuedConnection);
    m_stack->addWidget(made);
    return made;
}

void OfficeWindow::readAnew()
{
    if (OfficePage *page = m_current < 0 ? nullptr : m_pages.at(m_current).page)
        page->readAnew();
}

void OfficeWindow::buildPages()
{
    for (qsizetype i = 0; i < m_pages.size(); ++i)
        built(i);
}

void OfficeWindow::turnTo(qsizetype page)
{
    if (page < 0 || page >= m_pages.size())
        return;
    OfficePage *shown = built(page);
    m_current = page;
    m_side->setCurrentPage(page);
    m_title->setText(m_pages.at(page).entry.title());
    m_stack->setCurrentWidget(shown);
    followWarnings();
}

void OfficeWindow::step(qsizetype pages)
{
    const qsizetype next = m_current + pages;
    if (next >= 0 && next < m_pages.size())
        goTo({next, nullptr, {}, {}}, true);
}

void OfficeWindow::goTo(const OfficePlace &place, bool byKey)
{
    m_side->endSearch();
    turnTo(place.page);
    openSide(false);
    QWidget *control = place.control;
    if (control != nullptr && !control->isEnabled())
        control = nullptr;
    // A touch on a page leaves the focus, so that no keyboard comes onto the screen.
    if (control == nullptr && byKey)
        control = firstOf(*m_pages.at(place.page).page);
    if (control == nullptr)
        return;
    control->setFocus(Qt::TabFocusReason);
    bringIntoView(*control);
}

void OfficeWindow::showPage(const QString &title)
{
    for (qsizetype i = 0; i < m_pages.size(); ++i) {
        if (m_pages.at(i).entry.title() == title)
            goTo({i, nullptr, {}, {}}, false);
    }
}

QStringList OfficeWindow::pageTitles() const
{
    QStringList titles;
    for (const BuiltPage &page : m_pages)
        titles << page.entry.title();
    return titles;
}

QList<OfficePlace> OfficeWindow::find(const QString &typed)
{
    buildPages();
    return findPlaces(typed, m_pages);
}

void OfficeWindow::beginSearch()
{
    openSide(true);
    m_side->beginSearch();
}

/// In a wide window it is always open.
void OfficeWindow::openSide(bool open)
{
    const bool hadFocus = m_side->isAncestorOf(focusWidget());
    m_sideOpen = open && m_narrow;
    m_content->setVisible(!m_sideOpen);
    m_side->setVisible(!m_narrow || m_sideOpen);
    if (m_sideOpen)
        m_side->setFocus();
    else if (m_narrow && hadFocus)
        m_menu->setFocus();
}

/// Escape in the list, which stands in place of the page in a narrow window.
void OfficeWindow::leaveSide()
{
    if (m_sideOpen)
        openSide(false);
    else
        reject();
}

void OfficeWindow::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (button == nullptr || (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter))
        return QDialog::keyPressEvent(event);
    if (!event->isAutoRepeat())
        button->click();
}

void OfficeWindow::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    m_narrow = width() < sideFrom;
    m_menu->setVisible(m_narrow);
    m_side->setMaximumWidth(m_narrow ? QWIDGETSIZE_MAX : sideWidth);
    m_side->setMinimumWidth(m_narrow ? 0 : sideWidth);
    openSide(m_sideOpen);
}

QSize OfficeWindow::minimumSizeHint() const
{
    const QMargins around = layout()->contentsMargins();
    return m_content->minimumSizeHint().grownBy(around);
}

bool OfficeWindow::mayLeave()
{
    return std::all_of(m_pages.cbegin(), m_pages.cend(), [this](const BuiltPage &page) {
        const auto question = page.page != nullptr ? page.page->leaving() : std::nullopt;
        return !question || askInOffice(this, question->text, question->action);
    });
}

void OfficeWindow::reject()
{
    if (mayLeave())
        QDialog::reject();
}

void OfficeWindow::leaveForRestore(const QString &backup)
{
    if (const QString obstacle = m_context.obstacle(); !obstacle.isEmpty())
        return tellInOffice(this, obstacle);
    if (!mayLeave())
        return;
    m_askedRestore = backup;
    QDialog::reject();
}

} // namespace harrowby::app
