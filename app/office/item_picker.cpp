// SPDX-License-Identifier: MIT
#include "app/office/item_picker.h"

#include "app/boxes/office_box.h"
#include "app/shop/failure_text.h"
#include "theme/measures.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace harrowby::app {

namespace {

constexpr int mostItems = 200; // nobody reads more

} // namespace

ItemPicker::ItemPicker(Records &records, QWidget *parent) : QWidget(parent), m_table(records)
{
    m_entry = new QLineEdit(this);
    m_entry->setObjectName(u"itemEntry"_s);
    m_entry->setAccessibleName(u"Part of the item's name or ID"_s);
    m_entry->setPlaceholderText(u"Part of the name or ID"_s);
    m_list = new QListWidget(this);
    m_list->setObjectName(u"itemList"_s);
    m_list->setAccessibleName(u"Items found"_s);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_found = makeOfficeText(this, {});
    m_found->setObjectName(u"itemsFound"_s);
    m_pause.setSingleShot(true);
    m_pause.setInterval(150ms);
    connect(m_entry, &QLineEdit::textChanged, &m_pause, qOverload<>(&QTimer::start));
    connect(m_entry, &QLineEdit::returnPressed, this, &ItemPicker::search);
    connect(&m_pause, &QTimer::timeout, this, &ItemPicker::search);
    connect(m_list, &QListWidget::currentRowChanged, this, &ItemPicker::currentChanged);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(m_entry);
    rows->addWidget(m_list, 1);
    rows->addWidget(m_found);
    search();
}

std::optional<StockItem> ItemPicker::current() const
{
    const int row = m_list->currentRow();
    return row >= 0 && row < m_items.size() ? std::optional(m_items.at(row)) : std::nullopt;
}

void ItemPicker::search()
{
    m_pause.stop();
    const auto found = m_table.itemsLike(m_entry->text(), mostItems);
    m_items = found.value_or(QList<StockItem>());
    {
        const QSignalBlocker quietly(m_list);
        m_list->clear();
        for (const StockItem &item : std::as_const(m_items)) {
            auto *row = new QListWidgetItem(itemWords(item.name, item.id), m_list);
            row->setSizeHint({0, touchHeight});
        }
        m_list->setCurrentRow(m_items.isEmpty() || m_entry->text().isEmpty() ? -1 : 0);
    }
    const QString count = m_items.size() >= mostItems ? u"The first %1 items; type more of the name."_s.arg(mostItems)
                          : m_items.isEmpty()         ? u"No item has this in its name or ID."_s
                                                      : QString();
    showOutcome(*m_found,
                found ? count : u"\u26a0 "_s + failureWords(u"The items could not be read."_s, found.error()));
    Q_EMIT currentChanged();
}

} // namespace harrowby::app
