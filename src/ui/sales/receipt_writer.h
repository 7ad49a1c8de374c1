// SPDX-License-Identifier: MIT
#pragma once

#include "receipt/receipt_text.h"

#include <functional>
#include <vector>

namespace harrowby {

class Printer;
class Printers;
class SavedSettings;

/// Prints the parts of a receipt, each line in its font, on the printer that is current when the part begins.
class ReceiptWriter
{
public:
    /// Prints one line and keeps it for a reprint.
    using PrintLine = std::function<void(const QString &text)>;

    /// Printers and settings must outlive it.
    ReceiptWriter(Printers &printers, SavedSettings &settings, PrintLine printLine);

    /// `unsaved` is printed where no title or address is saved.
    void printHeader(const QString &unsaved) const;
    void printTotals(float lineCount, float total) const;
    /// Ends the print job too.
    void printFooter(const QString &purchaseId, const QDateTime &time) const;

private:
    void print(const std::vector<ReceiptStep> &steps) const;

    Printers &m_printers;
    SavedSettings &m_settings;
    PrintLine m_printLine;
};

/// Prints the lines of an earlier receipt as a job of their own, in the printer's fonts as they are.
void reprintReceipt(Printer &printer, const QString &receipt);

} // namespace harrowby
