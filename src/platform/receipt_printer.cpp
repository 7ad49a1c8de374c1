// SPDX-License-Identifier: MIT
#include "platform/receipt_printer.h"

#include "basic/logging.h"
#include "platform/failure_telling.h"
#include "platform/hand_over.h"
#include "platform/receipt_folder.h"
#include "receipt/receipt_pdf.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

ReceiptPrinter::ReceiptPrinter(QString deviceName, std::shared_ptr<const Clock> clock,
                               std::shared_ptr<HandOver> handOver) :
    m_deviceName(std::move(deviceName)),
    m_clock(std::move(clock)), m_handOver(std::move(handOver))
{
}

void ReceiptPrinter::printLine(const QString &text)
{
    m_lines.push_back({text, m_fontSize, m_bold});
}

void ReceiptPrinter::endDocument()
{
    const auto lines = std::exchange(m_lines, {});
    if (lines.empty())
        return;
    const QDateTime now = m_clock->now();
    const QByteArray pdf = receiptPdf(lines, receiptTitle(now));
    if (pdf.isEmpty()) {
        qCWarning(lcPrint).noquote() << receiptTitle(now) << "for" << m_deviceName << "cannot be drawn";
        FailureTelling::report(FileFailure::Kind::Receipt, receiptFolders().constFirst(), u"it cannot be drawn"_s);
        return;
    }
    const QString file = keepReceipt(pdf, now);
    if (!file.isEmpty() && m_handOver)
        m_handOver->start(m_deviceName, file);
}

} // namespace harrowby
