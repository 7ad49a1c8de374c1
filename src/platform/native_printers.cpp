// SPDX-License-Identifier: MIT
#include "platform/native_printers.h"

#include "platform/receipt_printer.h"

#include <QCoreApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

NativePrinters::NativePrinters(std::shared_ptr<const Clock> clock, const PrintOptions &options) :
    m_clock(std::move(clock)), m_queues(options), m_handOver(std::make_shared<HandOver>(options))
{
    m_queues.refresh();
    if (auto *const application = QCoreApplication::instance())
        QObject::connect(application, &QCoreApplication::aboutToQuit, m_handOver.get(), &HandOver::finish);
}

NativePrinters::~NativePrinters() = default;

QString NativePrinters::filePrinterName()
{
    return u"Receipt file (PDF)"_s;
}

QStringList NativePrinters::deviceNames()
{
    m_queues.refresh();
    m_queues.wait();
    return m_queues.names() << filePrinterName();
}

std::shared_ptr<Printer> NativePrinters::printer(const QString &deviceName)
{
    return deviceNames().contains(deviceName) ? find(deviceName) : nullptr;
}

std::shared_ptr<Printer> NativePrinters::current()
{
    if (m_chosen)
        return m_chosen;
    // An answer that comes in the middle of a receipt must not tear it in two.
    if (!m_default || !m_default->hasOpenJob())
        m_default = find(defaultName());
    return m_default;
}

void NativePrinters::setCurrent(std::shared_ptr<Printer> printer)
{
    m_chosen = std::move(printer);
}

QString NativePrinters::defaultName()
{
    m_queues.refresh();
    if (!m_queues.hasAnswered())
        m_queues.wait();
    const QString name = m_queues.defaultName();
    return name.isEmpty() ? filePrinterName() : name;
}

std::shared_ptr<ReceiptPrinter> NativePrinters::find(const QString &deviceName)
{
    auto &printer = m_printers[deviceName];
    if (!printer) {
        const bool isQueue = deviceName != filePrinterName();
        printer = std::make_shared<ReceiptPrinter>(deviceName, m_clock, isQueue ? m_handOver : nullptr);
    }
    return printer;
}

} // namespace harrowby
