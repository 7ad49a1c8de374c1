// SPDX-License-Identifier: MIT
#include "ui/sales/receipt_writer.h"

#include "platform/printers.h"
#include "platform/saved_settings.h"

#include <utility>

namespace harrowby {

ReceiptWriter::ReceiptWriter(Printers &printers, SavedSettings &settings, PrintLine printLine) :
    m_printers(printers), m_settings(settings), m_printLine(std::move(printLine))
{
}

void ReceiptWriter::printHeader(const QString &unsaved) const
{
    const QString title = m_settings.get(saved::ReceiptTitle.section, saved::ReceiptTitle.key, unsaved);
    const QString address = m_settings.get(saved::ReceiptAddress.section, saved::ReceiptAddress.key, unsaved);
    print(receiptHeader(title, address));
}

void ReceiptWriter::printTotals(float lineCount, float total) const
{
    print(receiptTotals(lineCount, m_settings.get(saved::Currency), total));
}

void ReceiptWriter::printFooter(const QString &purchaseId, const QDateTime &time) const
{
    print(receiptFooter(purchaseId, time));
    m_printers.current()->endDocument();
}

void ReceiptWriter::print(const std::vector<ReceiptStep> &steps) const
{
    const std::shared_ptr<Printer> printer = m_printers.current();
    for (const ReceiptStep &step : steps) {
        if (step.fontSize)
            printer->setFontSize(*step.fontSize);
        if (step.bold)
            printer->setFontBold(*step.bold);
        if (step.text)
            m_printLine(*step.text);
    }
}

void reprintReceipt(Printer &printer, const QString &receipt)
{
    printer.printLine(reprintHeading);
    printer.printLine(QString());
    printer.printLine(receipt);
    printer.endDocument();
}

} // namespace harrowby
