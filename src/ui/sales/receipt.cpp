// SPDX-License-Identifier: MIT
#include "basic/text.h"
#include "ui/inventory.h"
#include "ui/widgets/pick_list.h"

using namespace Qt::StringLiterals;

namespace harrowby {

void Inventory::PRINTS(const QString &text, bool newReceipt)
{
    if (newReceipt) {
        m_state.last.ReceiptText.clear();
        if (text.isEmpty())
            return;
    }
    m_state.last.ReceiptText += crLf + text;
    m_platform.printers->current()->printLine(text);
}

std::shared_ptr<Printer> Inventory::UsePrinter()
{
    const QStringList names = m_platform.printers->deviceNames();
    for (const QString &name : names) {
        // Read again for each printer, as the host may write it meanwhile.
        if (name == m_platform.settings->get(saved::ReceiptPrinter))
            return m_platform.printers->printer(name);
    }
    return nullptr;
}

bool Inventory::LoadPrinter()
{
    m_controls.Combo3->clearEntries(); // Intended: clears the item list, while printers are only ever added
    const QStringList names = m_platform.printers->deviceNames();
    for (const QString &name : names)
        m_controls.Combo9->addEntry(name);
    const std::shared_ptr<Printer> printer = UsePrinter();
    if (!printer)
        return true;
    m_platform.printers->setCurrent(printer);
    m_controls.Combo9->setEntryText(m_platform.settings->get(saved::ReceiptPrinter));
    return true;
}

} // namespace harrowby
