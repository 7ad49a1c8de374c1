// SPDX-License-Identifier: MIT
#include "store/recordset.h"
#include "store/statements.h"
#include "ui/inventory.h"
#include "ui/row_loop.h"
#include "ui/widgets/pick_list.h"

#include <QListWidget>

#include <array>

using namespace Qt::StringLiterals;

namespace harrowby {

void Inventory::LoadCategory()
{
    const std::array lists{m_controls.Combo1, m_controls.Combo2, m_controls.Combo5, m_controls.Combo12};
    std::array<QString, lists.size()> texts;
    for (std::size_t i = 0; i < lists.size(); ++i)
        texts.at(i) = lists.at(i)->entryText();
    for (PickList *list : lists)
        list->clearEntries();
    // Not in Combo5: an item cannot belong to all categories at once.
    for (PickList *list : {m_controls.Combo1, m_controls.Combo2, m_controls.Combo12})
        list->addEntry(statements::allCategories);
    DbRecordset categories;
    categories.Open(statements::categories(), connection());
    forEachRow(categories, [&] {
        if (const std::optional<QString> name = fieldText(categories, u"CategoryName"_s)) {
            for (PickList *list : lists)
                list->addEntry(name->toUpper());
        }
        m_breather.breathe();
    });
    for (PickList *list : lists)
        list->addEntry(u"OTHER CATEGORY"_s);
    for (std::size_t i = 0; i < lists.size(); ++i)
        lists.at(i)->setEntryText(texts.at(i));
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
}

} // namespace harrowby
