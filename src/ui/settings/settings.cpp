// SPDX-License-Identifier: MIT
#include "store/recordset.h"
#include "store/statements.h"
#include "ui/inventory.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/tab_strip.h"

#include <QCheckBox>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

std::int16_t checkValue(const QCheckBox *box)
{
    return box->isChecked() ? 1 : 0;
}

} // namespace

void Inventory::saveSettings()
{
    const StoreSettings entered{checkValue(m_controls.Check4), checkValue(m_controls.Check3), m_controls.Text2->text(),
                                checkValue(m_controls.Check1), checkValue(m_controls.Check2)};
    Execute(connection(), statements::updateSettings(entered));
    m_platform.settings->save(setting::EmailReport, QString::number(entered.EmailReportFlag));
    m_platform.settings->save(setting::PrintReceipt, QString::number(checkValue(m_controls.Check5)));
    m_platform.settings->save(setting::ReceiptPrinter, m_controls.Combo9->entryText());
    if (m_platform.printers->current()->deviceName() != m_controls.Combo9->entryText()) {
        if (const std::shared_ptr<Printer> printer = UsePrinter())
            m_platform.printers->setCurrent(printer);
    }
    m_state.settings = entered;
    LogActivity(u"Setting Saved!"_s, box::Information, false, true);
}

void Inventory::receiptChoiceChanged()
{
    m_controls.Combo9->setEnabled(m_controls.Check5->isChecked());
}

void Inventory::UpdatePromptReorder(const std::int16_t &flag)
{
    m_state.settings.PromptReorderFlag = flag;
}

} // namespace harrowby
