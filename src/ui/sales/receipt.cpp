// SPDX-License-Identifier: MIT
#include "basic/text.h"
#include "receipt/receipt_text.h"
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

void Inventory::printReceiptHeader()
{
    const QString title =
        m_platform.settings->get(setting::ReceiptTitle.section, setting::ReceiptTitle.key, m_state.MsgTitle);
    const QString address =
        m_platform.settings->get(setting::ReceiptAddress.section, setting::ReceiptAddress.key, m_state.MsgTitle);
    printReceiptBlock(receiptHeader(title, address));
}

void Inventory::printReceiptTotals(float lineCount, float total)
{
    const QString currency = m_platform.settings->get(setting::Currency);
    printReceiptBlock(receiptTotals(lineCount, currency, total));
}

void Inventory::printReceiptFooter(const QString &purchaseId)
{
    printReceiptBlock(receiptFooter(purchaseId, m_platform.clock->now()));
    m_platform.printers->current()->endDocument();
}

void Inventory::printReceiptBlock(const std::vector<ReceiptStep> &steps)
{
    const std::shared_ptr<Printer> printer = m_platform.printers->current();
    for (const ReceiptStep &step : steps) {
        if (step.fontSize)
            printer->setFontSize(*step.fontSize);
        if (step.bold)
            printer->setFontBold(*step.bold);
        if (step.text)
            PRINTS(*step.text, false);
    }
}

void Inventory::reprintReceipt()
{
    const std::shared_ptr<Printer> printer = m_platform.printers->current();
    printer->printLine(u"***REPRINTED COPY***"_s);
    printer->printLine(QString());
    printer->printLine(m_state.last.ReceiptText);
    printer->endDocument();
}

std::shared_ptr<Printer> Inventory::UsePrinter()
{
    const QStringList names = m_platform.printers->deviceNames();
    for (const QString &name : names) {
        // Read afresh for each printer, as the host may write it meanwhile.
        if (name == m_platform.settings->get(setting::ReceiptPrinter))
            return m_platform.printers->printer(name);
    }
    return nullptr;
}

bool Inventory::LoadPrinter()
{
    m_controls.Combo3->clearEntries(); // the item list, on purpose: the printer list is only ever added to
    const QStringList names = m_platform.printers->deviceNames();
    for (const QString &name : names)
        m_controls.Combo9->addEntry(name);
    const std::shared_ptr<Printer> printer = UsePrinter();
    if (!printer)
        return true;
    m_platform.printers->setCurrent(printer);
    m_controls.Combo9->setEntryText(m_platform.settings->get(setting::ReceiptPrinter));
    return true;
}

} // namespace harrowby
