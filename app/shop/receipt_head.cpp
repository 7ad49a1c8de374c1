// SPDX-License-Identifier: MIT
#include "app/shop/receipt_head.h"

#include "app/shop/password_rules.h"
#include "basic/values.h"
#include "receipt/receipt_layout.h"
#include "receipt/receipt_text.h"
#include "receipt/receipt_width.h"

#include <harrowby/saved_settings.h>

#include <QLocale>
#include <QPainter>

#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr float sampleTotal = 9999999; // of seven digits, the most that a total shows exactly
constexpr float samplePrice = 2.5F;

QString read(const OfficeSettings &settings, const SettingPlace &place)
{
    return settings.get(place.section, place.key, place.defaultValue);
}

/// Reads with two different defaults: only a saved value is equal both times.
bool isSaved(const OfficeSettings &settings, const SettingPlace &place)
{
    return settings.get(place.section, place.key, u"a"_s) == settings.get(place.section, place.key, u"b"_s);
}

/// The currency symbol of the user's country; the till's own default where the country is not known.
QString usualCurrency()
{
    const QLocale locale = QLocale::system();
    const QString symbol = locale.territory() == QLocale::AnyTerritory || locale.language() == QLocale::C
                               ? QString()
                               : locale.currencySymbol();
    return symbol.isEmpty() ? QString(saved::Currency.defaultValue) : symbol;
}

std::vector<ReceiptLine> linesOf(const std::vector<ReceiptStep> &steps)
{
    std::vector<ReceiptLine> lines;
    ReceiptLine now;
    for (const ReceiptStep &step : steps) {
        now.fontSize = step.fontSize.value_or(now.fontSize);
        now.bold = step.bold.value_or(now.bold);
        now.text = step.text.value_or(QString());
        if (step.text)
            lines.push_back(now);
    }
    return lines;
}

bool fitsOneRow(const ReceiptLine &line)
{
    const ReceiptLayout layout({line});
    return layout.pageCount() == 1 && layout.rows(0).size() == 1;
}

std::vector<ReceiptLine> sampleLines(const ReceiptHead &head)
{
    std::vector<ReceiptLine> lines = linesOf(receiptHeader(head.title, head.address));
    lines.push_back({u"1 x TEA-0001  |  TEA = 2.50"_s, 8, false});
    for (const ReceiptLine &line : linesOf(receiptTotals(1, head.currency, samplePrice)))
        lines.push_back(line);
    return lines;
}

} // namespace

ReceiptProposal proposeReceipt(const OfficeSettings &settings)
{
    ReceiptProposal proposal;
    if (!isSaved(settings, saved::ReceiptTitle))
        proposal.title = u"My Shop"_s;
    if (!isSaved(settings, saved::Currency))
        proposal.currency = usualCurrency();
    return proposal;
}

bool saveNewShop(const OfficeSettings &settings, const ReceiptProposal &chosen)
{
    bool saved = true;
    const auto save = [&](const SettingPlace &place, const std::optional<QString> &value) {
        if (value && !isSaved(settings, place))
            saved = settings.save(place.section, place.key, *value) && saved;
    };
    save(saved::ReceiptTitle, chosen.title);
    save(saved::Currency, chosen.currency);
    save(saved::EmailReport, u"0"_s);
    return saved;
}

ReceiptHead readReceiptHead(const OfficeSettings &settings)
{
    const auto emailReport = valueInt16(DbValue(read(settings, saved::EmailReport))); // as the till reads it
    return {read(settings, saved::ReceiptTitle), read(settings, saved::ReceiptAddress), read(settings, saved::Currency),
            emailReport.value_or(0) != 0};
}

bool saveReceiptHead(const OfficeSettings &settings, const ReceiptHead &before, const ReceiptHead &head)
{
    bool saved = true;
    const auto save = [&](const SettingPlace &place, const QString &old, const QString &value) {
        if (value != old)
            saved = settings.save(place.section, place.key, value) && saved;
    };
    save(saved::ReceiptTitle, before.title, head.title);
    save(saved::ReceiptAddress, before.address, head.address);
    save(saved::Currency, before.currency, head.currency);
    save(saved::EmailReport, before.emailReport ? u"1"_s : u"0"_s, head.emailReport ? u"1"_s : u"0"_s);
    return saved;
}

Result<void, QString> checkReceiptHead(const ReceiptHead &head)
{
    if (hasUntypable(head.title + head.address + head.currency))
        return Unexpected(u"The receipt cannot hold characters that cannot be typed."_s);
    const auto header = linesOf(receiptHeader(head.title, head.address));
    if (!fitsOneRow(header.at(0)))
        return Unexpected(u"The title is too long for one line of the receipt."_s);
    if (!fitsOneRow(header.at(1)))
        return Unexpected(u"The address is too long for one line of the receipt."_s);
    if (head.currency.trimmed().isEmpty())
        return Unexpected(u"Please enter a currency."_s);
    // Behind the empty line, the separator and the count.
    if (!fitsOneRow(linesOf(receiptTotals(1, head.currency, sampleTotal)).at(3)))
        return Unexpected(u"The currency is too long for the line of the total."_s);
    return {};
}

QPixmap receiptPreview(const ReceiptHead &head, int width, qreal pixelRatio)
{
    const ReceiptLayout layout(sampleLines(head));
    const QSizeF paper = layout.pageSizeMm(0);
    const QSizeF size(width, width * paper.height() / paper.width());
    QPixmap picture((size * pixelRatio).toSize());
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal unitsWide = paper.width() / mmPerInch * receiptUnitsPerInch;
    painter.scale(width / unitsWide, width / unitsWide);
    layout.draw(painter, 0);
    return picture;
}

} // namespace harrowby::app
