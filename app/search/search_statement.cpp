// SPDX-License-Identifier: MIT
#include "app/search/search_statement.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

// The texts around what is looked for, which stands there twice; a test holds them against the component's own.
constexpr QLatin1StringView
    head("Select StockID, StockName, StockCategory from StockList where UPPER(StockID) like '*");
constexpr QLatin1StringView middle("*' or UPPER(StockName) like '*");
constexpr QLatin1StringView tail("*'  and StockUse = 'Enabled'");

} // namespace

std::optional<QString> searchedText(QStringView statement)
{
    const qsizetype twice = statement.size() - head.size() - middle.size() - tail.size();
    if (twice < 0 || twice % 2 != 0 || !statement.startsWith(head) || !statement.endsWith(tail))
        return {};
    const QStringView text = statement.sliced(head.size(), twice / 2);
    const QStringView rest = statement.sliced(head.size() + text.size());
    if (!rest.startsWith(middle) || rest.sliced(middle.size(), text.size()) != text)
        return {};
    if (text.contains(u'\'') || text.contains(QChar::Null))
        return {};
    return text.toString();
}

QString findingStatement()
{
    return u"Select StockID, StockName, StockCategory from StockList where harrowby_finds(?1, StockID)"
           " or harrowby_finds(?1, StockName) and StockUse = 'Enabled'"_s;
}

} // namespace harrowby::app
