// SPDX-License-Identifier: MIT
#include "ui/settings/settings.h"

#include "basic/numbers.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/inventory.h"
#include "ui/widgets/pick_list.h"

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

std::optional<std::int16_t> savedEmailReportFlag(SavedSettings &settings)
{
    return valueInt16(DbValue(settings.get(saved::EmailReport)));
}

bool savedPrintReceipt(SavedSettings &settings)
{
    const QString value = settings.get(saved::PrintReceipt);
    const std::optional<double> number = wholeNumber(value);
    return number ? *number != 0.0 : value.compare("false"_L1, Qt::CaseInsensitive) != 0;
}

void showSettings(const Controls &controls, const StoreSettings &settings, bool printReceipt)
{
    controls.Check4->setChecked(settings.EmailReportFlag != 0);
    controls.Check3->setChecked(settings.ShowDetailsFlag != 0);
    controls.Text2->setText(settings.ReportEmailAddress);
    controls.Check1->setChecked(settings.PromptReorderFlag != 0);
    controls.Check2->setChecked(settings.HideFinishedFlag != 0);
    controls.Check5->setChecked(printReceipt);
    controls.Combo9->setEnabled(printReceipt);
}

void Inventory::saveSettings()
{
    const StoreSettings entered{checkValue(m_controls.Check4), checkValue(m_controls.Check3), m_controls.Text2->text(),
                                checkValue(m_controls.Check1), checkValue(m_controls.Check2)};
    Execute(connection(), statements::updateSettings(entered));
    m_platform.settings->save(saved::EmailReport, QString::number(entered.EmailReportFlag));
    m_platform.settings->save(saved::PrintReceipt, QString::number(checkValue(m_controls.Check5)));
    m_platform.settings->save(saved::ReceiptPrinter, m_controls.Combo9->entryText());
    if (m_platform.printers->current()->deviceName() != m_controls.Combo9->entryText()) {
        if (const std::shared_ptr<Printer> printer = UsePrinter())
            m_platform.printers->setCurrent(printer);
    }
    m_state.settings = entered;
    m_state.settings.areRead = true; // what a person has saved is not read over
    LogActivity(u"Setting Saved!"_s, box::Information, false, true);
}

void Inventory::UpdatePromptReorder(const std::int16_t &flag)
{
    m_state.settings.PromptReorderFlag = flag;
}

} // namespace harrowby
