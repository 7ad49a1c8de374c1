// SPDX-License-Identifier: MIT
#include "basic/dates.h"
#include "basic/text.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/inventory.h"
#include "ui/row_loop.h"
#include "ui/widgets/pick_list.h"

#include <QListWidget>
#include <QPersistentModelIndex>

#include <array>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Null when nothing is selected.
const QListWidgetItem *selectedEntry(const QListWidget &list)
{
    return list.selectedItems().value(0);
}

} // namespace

void Inventory::LoadCategory()
{
    const LatestLoad::Turn load = m_underWay.categoryLoads.begin();
    const std::array lists{m_controls.Combo1, m_controls.Combo2, m_controls.Combo5, m_controls.Combo12};
    std::array<QString, lists.size()> texts;
    for (std::size_t i = 0; i < lists.size(); ++i)
        texts.at(i) = lists.at(i)->entryText();
    for (PickList *list : lists)
        list->clearEntries();
    // Combo5 has no entry for all categories: an item belongs to one.
    for (PickList *list : {m_controls.Combo1, m_controls.Combo2, m_controls.Combo12})
        list->addEntry(statements::allCategories);
    DbRecordset categories;
    categories.Open(statements::categories(), connection());
    forEachRow(categories, [&] {
        const std::optional<QString> name = fieldText(categories, u"CategoryName"_s);
        if (name && load.isLatest()) {
            for (PickList *list : lists)
                list->addEntry(name->toUpper());
        }
        m_breather.breathe();
    });
    if (load.isLatest()) { // else a later load has filled the lists
        for (PickList *list : lists)
            list->addEntry(statements::otherCategory);
    }
    m_state.areCategoriesRead = m_state.areCategoriesRead || !categories.HasFailed();
    for (std::size_t i = 0; i < lists.size(); ++i) {
        if (lists.at(i)->entryText().isEmpty()) // else a user has chosen one meanwhile
            lists.at(i)->setEntryText(texts.at(i));
    }
}

void Inventory::LoadCategories()
{
    m_controls.List2->clear();
    DbRecordset categories;
    categories.Open(statements::categoriesByName(), connection());
    forEachRow(categories, [&] {
        if (const std::optional<QString> name = fieldText(categories, u"CategoryName"_s))
            m_controls.List2->addItem(*name);
        m_breather.breathe();
    });
    m_state.areCategoriesListed = m_state.areCategoriesListed || !categories.HasFailed();
}

void Inventory::addCategory()
{
    const QString name = trimmedUpper(m_controls.Combo16->entryText());
    if (name == statements::allCategories || name == statements::otherCategory) {
        warn(u"Category Name Entry can't be Used!"_s);
        return;
    }
    if (name.isEmpty()) {
        warn(u"Category Name Entry is Blank!"_s);
        return;
    }
    // Intended: compared with the list on screen, not the table, and case-sensitively: FOOD is added beside Food.
    if (!m_controls.List2->findItems(name, Qt::MatchExactly | Qt::MatchCaseSensitive).isEmpty()) {
        warn(u"Category Already Added!"_s);
        return;
    }
    // Intended: a name that the statement refuses (one with a single quote) is listed and logged all the same.
    Execute(connection(), statements::addCategory(name, usageTime(m_platform.clock->now())));
    LoadCategory();
    m_controls.List2->addItem(name);
    m_controls.Combo16->setEntryText(QString());
    LogActivity(u"Category ["_s + name + u"] Added!"_s, box::Information, false, false);
}

void Inventory::renameCategory()
{
    const QListWidgetItem *selected = selectedEntry(*m_controls.List2);
    if (selected == nullptr) {
        warn(m_controls.List2->count() == 0 ? u"There are no Category to Change"_s
                                            : u"Please First Select a Category!"_s);
        return;
    }
    const QString oldName = selected->text();
    const QPersistentModelIndex entry = m_controls.List2->indexFromItem(selected);
    const QString answer = askForText(u"Change Category["_s + oldName + u"] to what new name?"_s,
                                      u"Change Category - "_s + m_state.MsgTitle, QString());
    const QString newName = trimmedUpper(answer);
    constexpr qsizetype shortest = 3; // Intended: counted before trimming; adding asks for no length
    if (answer.toUpper().size() < shortest || newName.isEmpty()) {
        warn(u"Category Name too short!"_s);
        return;
    }
    // Intended: reserved and existing names are not refused here, only by adding.
    Execute(connection(), statements::renameCategory(newName, oldName));
    Execute(connection(), statements::moveStock(newName, oldName));
    m_controls.List2->model()->setData(entry, newName);
    LoadCategory();
    LogActivity(u"Category Name Changed!"_s, box::Information, false, false);
}

void Inventory::deleteCategory()
{
    const QListWidgetItem *selected = selectedEntry(*m_controls.List2);
    if (selected == nullptr) {
        warn(m_controls.List2->count() == 0 ? u"There are no Category to Delete."_s
                                            : u"Please First Select a Category to Delete!"_s);
        return;
    }
    const QString name = selected->text();
    // Other handlers may change the list before the entry is removed.
    const QPersistentModelIndex entry = m_controls.List2->indexFromItem(selected);
    if (ask(u"Please note that any Stock item under this category will be moved to 'OTHER CATEGORY. Do you want to "
            "continue to delete Category ["_s +
                name + u"]?"_s,
            box::AskDefaultNo) != Answer::Yes)
        return;
    Execute(connection(), statements::deleteCategory(name));
    Execute(connection(), statements::moveStockToOther(name));
    LoadCategory();
    if (entry.isValid())
        m_controls.List2->model()->removeRow(entry.row());
    // Unselect the entry that took its place: nobody chose it, and the next "Delete" would remove it.
    m_controls.List2->setCurrentRow(-1);
    LogActivity(u"Category ["_s + name + u"] Deleted!"_s, box::Information, false, false);
}

} // namespace harrowby
