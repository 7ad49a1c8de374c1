// SPDX-License-Identifier: MIT
#include "receipt/receipt_pdf.h"

#include "receipt/receipt_width.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

void setPage(QPdfWriter &writer, QSizeF sizeMm)
{
    const QPageSize size(sizeMm, QPageSize::Millimeter, u"Receipt"_s, QPageSize::ExactMatch);
    writer.setPageLayout(QPageLayout(size, QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
}

} // namespace

QByteArray receiptPdf(const std::vector<ReceiptLine> &lines, const QString &title)
{
    const ReceiptLayout layout(lines);
    QByteArray pdf;
    QBuffer buffer(&pdf);
    if (!buffer.open(QIODevice::WriteOnly))
        return {};
    QPdfWriter writer(&buffer);
    writer.setResolution(receiptUnitsPerInch);
    writer.setTitle(title);
    writer.setCreator(u"Harrowby Inventory"_s);
    setPage(writer, layout.pageSizeMm(0));
    QPainter painter;
    if (!painter.begin(&writer))
        return {};
    layout.draw(painter, 0);
    for (int page = 1; page < layout.pageCount(); ++page) {
        setPage(writer, layout.pageSizeMm(page));
        writer.newPage();
        layout.draw(painter, page);
    }
    return painter.end() ? pdf : QByteArray();
}

} // namespace harrowby
