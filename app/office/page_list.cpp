// SPDX-License-Identifier: MIT
#include "app/office/page_list.h"

#include "app/boxes/office_box.h"
#include "app/office/page_row_painter.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScroller>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString countWords(qsizetype count)
{
    return count == 0 ? u"Nothing has these words."_s : count == 1 ? u"1 place"_s : u"%1 places"_s.arg(count);
}

} // namespace

PageList::PageList(const QList<OfficePageEntry> &pages, Finder finder, QWidget *parent) :
    QWidget(parent), m_pages(pages), m_finder(std::move(finder))
{
    createField();
    createList();
    m_count = makeOfficeText(this, {});
    m_count->setObjectName(u"foundCount"_s);
    m_count->hide();
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(8);
    rows->addWidget(m_field);
    rows->addWidget(m_count);
    rows->addWidget(m_list, 1);
    setFocusProxy(m_list);
    listPages();
}

void PageList::createField()
{
    m_field = new QLineEdit(this);
    m_field->setObjectName(u"findSetting"_s);
    m_field->setAccessibleName(u"Find a page or a setting"_s);
    m_field->setAccessibleDescription(u"Control and F leads here"_s);
    m_field->setPlaceholderText(u"Find (Ctrl+F)"_s);
    m_field->setToolTip(u"Find a page or a setting by its words"_s);
    m_field->setClearButtonEnabled(true);
    m_field->installEventFilter(this);
    connect(m_field, &QLineEdit::textChanged, this, &PageList::listFound);
}

void PageList::createList()
{
    m_list = new QListWidget(this);
    m_list->setObjectName(u"officePages"_s);
    m_list->setAccessibleName(u"Pages"_s);
    m_list->setItemDelegate(new PageRowPainter(m_list));
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->installEventFilter(this);
    QScroller::grabGesture(m_list->viewport(), QScroller::TouchGesture);
    connect(m_list, &QListWidget::currentItemChanged, this, &PageList::turn);
    connect(m_list, &QListWidget::itemClicked, this, [this](const QListWidgetItem *row) { choose(row, false); });
}

void PageList::listPages()
{
    const QSignalBlocker quietly(m_list);
    m_searching = false;
    m_count->hide();
    m_list->clear();
    m_places.clear();
    QString group;
    for (qsizetype i = 0; i < m_pages.size(); ++i) {
        const OfficePageEntry &page = m_pages.at(i);
        if (std::exchange(group, page.group) != page.group)
            addGroup(page.group);
        addPlace({i, nullptr, page.title(), {}}, page.caption);
        m_list->item(m_list->count() - 1)->setToolTip(page.about);
        if (i == m_current)
            m_list->setCurrentRow(m_list->count() - 1);
    }
}

void PageList::listFound(const QString &typed)
{
    if (typed.trimmed().isEmpty())
        return listPages();
    const QSignalBlocker quietly(m_list);
    m_searching = true;
    m_list->clear();
    m_places.clear();
    for (const OfficePlace &place : m_finder(typed))
        addPlace(place, {});
    m_list->setCurrentRow(m_places.isEmpty() ? -1 : 0);
    m_list->scrollToTop();
    m_count->show();
    showOutcome(*m_count, countWords(m_places.size()));
}

void PageList::addGroup(const QString &group)
{
    auto *row = new QListWidgetItem(group, m_list);
    row->setFlags(Qt::NoItemFlags);
}

void PageList::addPlace(const OfficePlace &place, const QString &caption)
{
    auto *row = new QListWidgetItem(place.title, m_list);
    row->setData(PageRowPainter::PlaceRole, m_places.size());
    row->setData(PageRowPainter::CaptionRole, caption);
    row->setData(PageRowPainter::WhereRole, place.where);
    if (!place.where.isEmpty()) {
        row->setData(Qt::AccessibleTextRole, u"%1, %2"_s.arg(place.title, place.where));
        row->setToolTip(u"%1\n%2"_s.arg(place.title, place.where).toHtmlEscaped());
    }
    m_places << place;
}

void PageList::setCurrentPage(qsizetype page)
{
    m_current = page;
    if (m_searching)
        return;
    const QSignalBlocker quietly(m_list);
    for (int row = 0; row < m_list->count(); ++row) {
        const QVariant place = m_list->item(row)->data(PageRowPainter::PlaceRole);
        if (place.isValid() && m_places.at(place.toInt()).page == page)
            m_list->setCurrentRow(row);
    }
}

void PageList::beginSearch()
{
    m_field->setFocus(Qt::ShortcutFocusReason);
    m_field->selectAll();
}

void PageList::endSearch()
{
    if (!m_field->text().isEmpty())
        m_field->clear();
}

/// By the arrow keys, among the pages.
void PageList::turn()
{
    const QListWidgetItem *row = m_list->currentItem();
    if (m_searching || row == nullptr || !row->data(PageRowPainter::PlaceRole).isValid())
        return;
    m_current = m_places.at(row->data(PageRowPainter::PlaceRole).toInt()).page;
    Q_EMIT turnedTo(m_current);
}

void PageList::choose(const QListWidgetItem *row, bool byKey)
{
    if (row == nullptr || !row->data(PageRowPainter::PlaceRole).isValid())
        return;
    const OfficePlace place = m_places.at(row->data(PageRowPainter::PlaceRole).toInt());
    m_current = place.page;
    endSearch();
    Q_EMIT chosen(place, byKey);
}

bool PageList::handleKey(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(m_list->currentItem(), true);
        return true;
    case Qt::Key_Escape:
        if (m_field->text().isEmpty())
            Q_EMIT left();
        else
            endSearch();
        return true;
    default:
        return false;
    }
}

/// A letter typed in the list begins a search.
bool PageList::startTyping(const QString &text)
{
    if (text.isEmpty() || !text.front().isPrint() || text.front().isSpace())
        return false;
    beginSearch();
    m_field->insert(text);
    return true;
}

bool PageList::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto *press = static_cast<QKeyEvent *>(event);
    const int key = press->key();
    const bool moves = key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    const bool plain = (press->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
    if (watched == m_field && moves && plain) {
        QCoreApplication::sendEvent(m_list, event);
        return true;
    }
    if (handleKey(key) || (watched == m_list && plain && startTyping(press->text())))
        return true;
    return QWidget::eventFilter(watched, event);
}

} // namespace harrowby::app
