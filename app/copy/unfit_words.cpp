// SPDX-License-Identifier: MIT
#include "app/copy/unfit_words.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

QString unfitWords(const UnfitRows &unfit, qsizetype most)
{
    QStringList lines;
    for (const UnfitRow &row : unfit.first.mid(0, most))
        lines << u"%1, %2: %3"_s.arg(row.table, row.row, row.reason);
    if (const auto more = unfit.count - lines.size(); more > 0)
        lines << u"and %1 more"_s.arg(more);
    return lines.join(u'\n');
}

} // namespace harrowby::app
