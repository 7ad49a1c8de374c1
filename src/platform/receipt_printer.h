// SPDX-License-Identifier: MIT
#pragma once

#include "platform/clock.h"
#include "platform/printers.h"
#include "receipt/receipt_layout.h"

#include <memory>
#include <vector>

namespace harrowby {

class HandOver;

/// Collects the lines of a job, stores them as a PDF and, when it stands for a queue, hands the file over.
class ReceiptPrinter final : public Printer
{
public:
    /// Without a hand-over the PDF itself is the receipt.
    ReceiptPrinter(QString deviceName, std::shared_ptr<const Clock> clock, std::shared_ptr<HandOver> handOver);

    [[nodiscard]] QString deviceName() const override { return m_deviceName; }
    void setFontSize(int points) override { m_fontSize = points; }
    void setFontBold(bool bold) override { m_bold = bold; }
    void printLine(const QString &text) override;
    void endDocument() override;

    [[nodiscard]] bool hasOpenJob() const { return !m_lines.empty(); }

private:
    QString m_deviceName;
    std::shared_ptr<const Clock> m_clock;
    std::shared_ptr<HandOver> m_handOver;
    int m_fontSize = 10;
    bool m_bold = false;
    std::vector<ReceiptLine> m_lines;
};

} // namespace harrowby
