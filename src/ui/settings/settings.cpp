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
    if (!RequireLogin())
        return;
    if (!m_state.CanSettings) {
        refuseWorkArea();
        return;
    }
    const std::int16_t email = checkValue(m_controls.Check4);
    const std::int16_t details = checkValue(m_controls.Check3);
    const QString address = m_controls.Text2->text();
    const std::int16_t prompt = checkValue(m_controls.Check1);
    const std::int16_t hideFinished = checkValue(m_controls.Check2);
    Execute(connection(), statements::updateSettings({email, details, address, prompt, hideFinished}));
    m_platform.settings->save(u"Option"_s, u"EmailReport"_s, QString::number(email));
    m_platform.settings->save(u"Option"_s, u"UsePOSforReceipt"_s, QString::number(checkValue(m_controls.Check5)));
    m_platform.settings->save(u"POS"_s, u"COM"_s, m_controls.Combo9->entryText());
    if (m_platform.printers->current()->deviceName() != m_controls.Combo9->entryText()) {
        if (const std::shared_ptr<Printer> printer = UsePrinter())
            m_platform.printers->setCurrent(printer);
    }
    m_state.EmailReportFlag = email;
    m_state.ShowDetailsFlag = details;
    m_state.ReportEmailAddress = address;
    m_state.PromptReorderFlag = prompt;
    m_state.HideFinishedFlag = hideFinished;
    LogActivity(u"Setting Saved!"_s, box::Information, false, true);
}

void Inventory::receiptChoiceChanged()
{
    m_controls.Combo9->setEnabled(m_controls.Check5->isChecked());
}

void Inventory::UpdatePromptReorder(const std::int16_t &flag)
{
    m_state.PromptReorderFlag = flag;
}

} // namespace harrowby
