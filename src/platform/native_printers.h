// SPDX-License-Identifier: MIT
#pragma once

#include "platform/clock.h"
#include "platform/hand_over.h"
#include "platform/print_options.h"
#include "platform/printers.h"
#include "platform/queue_list.h"

#include <map>
#include <memory>

namespace harrowby {

class ReceiptPrinter;

/// The printers that CUPS knows and, last, one that is always there: it keeps each receipt as a PDF in the user's
/// receipts folder. Asks CUPS when it is created, in the background, so that the first list need not wait.
class NativePrinters final : public Printers
{
public:
    explicit NativePrinters(std::shared_ptr<const Clock> clock, const PrintOptions &options = {});
    ~NativePrinters() override;

    [[nodiscard]] QStringList deviceNames() override;
    [[nodiscard]] std::shared_ptr<Printer> printer(const QString &deviceName) override;
    [[nodiscard]] std::shared_ptr<Printer> current() override;
    void setCurrent(std::shared_ptr<Printer> printer) override;

    /// "Receipt file (PDF)"
    [[nodiscard]] static QString filePrinterName();

private:
    [[nodiscard]] std::shared_ptr<ReceiptPrinter> find(const QString &deviceName);
    [[nodiscard]] QString defaultName();

    std::shared_ptr<const Clock> m_clock;
    QueueList m_queues;
    std::shared_ptr<HandOver> m_handOver;
    std::map<QString, std::shared_ptr<ReceiptPrinter>> m_printers; ///< kept, with their font settings
    std::shared_ptr<Printer> m_chosen;
    std::shared_ptr<ReceiptPrinter> m_default;
};

} // namespace harrowby
