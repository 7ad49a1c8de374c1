// SPDX-License-Identifier: MIT
#include "app/customer/customer_page.h"

#include "basic/numbers.h"

#include <algorithm>
#include <map>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// What only turns the direction of writing, or cannot be seen, has no business on a screen for customers.
bool isSeen(QChar character)
{
    return character.category() != QChar::Other_Control && character.category() != QChar::Other_Format;
}

QString shownName(const QString &name)
{
    constexpr qsizetype longest = 120;
    QString shown = name.simplified().left(longest);
    if (!shown.isEmpty() && shown.back().isHighSurrogate())
        shown.chop(1);
    shown.removeIf([](QChar character) { return !isSeen(character); });
    return shown;
}

/// The last line that is new, or of which there is more than before.
std::optional<std::size_t> lastAdded(const std::vector<CounterLine> &lines,
                                     const std::map<QString, double> &quantitiesBefore)
{
    for (std::size_t line = lines.size(); line-- > 0;) {
        const auto before = quantitiesBefore.find(lines[line].stockId);
        if (before == quantitiesBefore.cend() || before->second < lines[line].quantity)
            return line;
    }
    return {};
}

std::map<QString, double> quantitiesOf(const std::vector<CounterLine> &lines)
{
    std::map<QString, double> quantities;
    for (const CounterLine &line : lines)
        quantities[line.stockId] = line.quantity;
    return quantities;
}

std::optional<std::size_t> lineOf(const std::vector<CounterLine> &lines, const QString &stockId)
{
    const auto found =
        std::find_if(lines.cbegin(), lines.cend(), [&](const CounterLine &line) { return line.stockId == stockId; });
    if (found == lines.cend())
        return {};
    return static_cast<std::size_t>(found - lines.cbegin());
}

} // namespace

CustomerStory::CustomerStory(const QString &title, const QString &currency)
{
    m_page.title = shownName(title);
    m_page.currency = shownName(currency);
}

void CustomerStory::followCart(const std::vector<CounterLine> &lines, double total)
{
    // A line that was taken away leaves the last item as it was; when that is the one, there is none.
    const auto added = lastAdded(lines, m_quantities);
    if (added)
        m_lastId = lines[*added].stockId;
    m_quantities = quantitiesOf(lines);
    m_page.kind = lines.empty() ? CustomerPage::Kind::Welcome : CustomerPage::Kind::Cart;
    m_page.last = lineOf(lines, m_lastId);
    m_page.lines.clear();
    for (const CounterLine &line : lines)
        m_page.lines.push_back({shownName(line.name), line.quantity, line.cost});
    m_page.total = total;
    m_page.change = 0;
}

void CustomerStory::followPurchase(const CounterPurchase &purchase)
{
    if (purchase.row == CounterPurchase::Row::NotWritten || m_page.kind == CustomerPage::Kind::Cart)
        return;
    m_page.kind = CustomerPage::Kind::Thanks;
    m_page.total = asStored(purchase.total);
}

void CustomerStory::followChange(double change)
{
    m_page.change = change;
}

void CustomerStory::end()
{
    followCart({}, 0);
}

QString customerAmount(const CustomerPage &page, double amount)
{
    const QString text = formatMoney(amount);
    return page.currency.isEmpty() ? text : page.currency + u'\u00a0' + text;
}

QStringList customerTexts(const CustomerPage &page)
{
    QStringList texts{page.title};
    switch (page.kind) {
    case CustomerPage::Kind::Welcome:
        return texts << u"Welcome"_s;
    case CustomerPage::Kind::Cart:
        if (page.last)
            texts << page.lines[*page.last].name;
        for (const CustomerLine &line : page.lines)
            texts << u"%1 | %2 | %3"_s.arg(plainText(line.quantity), line.name, formatMoney(line.cost));
        return texts << u"Total "_s + customerAmount(page, page.total);
    case CustomerPage::Kind::Thanks:
        break;
    }
    texts << u"Thank you!"_s << u"Total "_s + customerAmount(page, page.total);
    if (page.change > 0)
        texts << u"Change "_s + customerAmount(page, page.change);
    return texts;
}

LinesInSight linesInSight(std::size_t lines, std::size_t last, std::size_t rows)
{
    if (lines <= rows)
        return {0, lines};
    const std::size_t withOneWord = std::max<std::size_t>(rows, 2) - 1;
    if (last >= lines - withOneWord)
        return {lines - withOneWord, withOneWord};
    if (last < withOneWord)
        return {0, withOneWord};
    const std::size_t withTwoWords = std::max<std::size_t>(rows, 3) - 2;
    return {last + 1 - withTwoWords, withTwoWords};
}

} // namespace harrowby::app
