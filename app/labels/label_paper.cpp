// SPDX-License-Identifier: MIT
#include "app/labels/label_paper.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSizeF a4(210, 297);

LabelPaper roll(double width, double height)
{
    const QSizeF size(width, height);
    return {u"roll-%1x%2"_s.arg(width).arg(height),
            u"Roll: %1 \u00d7 %2 mm"_s.arg(width).arg(height),
            size,
            size,
            1,
            1,
            {},
            size,
            {1.2, 1.2},
            true};
}

/// In the middle of the sheet. `gap`: between two columns; rows of such sheets touch.
LabelPaper sheet(QSizeF label, int columns, int rows, double gap, QSizeF margin)
{
    const QSizeF step(label.width() + gap, label.height());
    const QPointF first((a4.width() - columns * step.width() + gap) / 2, (a4.height() - rows * step.height()) / 2);
    const int count = columns * rows;
    return {u"a4-%1"_s.arg(count),
            u"A4: %1 of %2 \u00d7 %3 mm"_s.arg(count).arg(label.width()).arg(label.height()),
            a4,
            label,
            columns,
            rows,
            first,
            step,
            margin,
            false};
}

/// Labels without a gap reach the edge of the sheet, where no printer prints.
constexpr QSizeF edgeMargin(4.5, 4.5);

} // namespace

QPointF LabelPaper::corner(int place) const
{
    const int row = place / columns;
    const int column = place % columns;
    return first + QPointF(column * step.width(), row * step.height());
}

int LabelPaper::placeAfter(qint64 count, int place) const
{
    return static_cast<int>((place + count) % labels());
}

qint64 LabelPaper::pages(qint64 count, int place) const
{
    return count == 0 ? 0 : (count + place + labels() - 1) / labels();
}

const QList<LabelPaper> &labelPapers()
{
    // The sizes that office shops sell for every printer: for prices, for shelves, and for parcels of goods.
    static const QList<LabelPaper> papers = {
        sheet({38.1, 21.2}, 5, 13, 2.5, {1.2, 1.2}),
        sheet({52.5, 29.7}, 4, 10, 0, edgeMargin),
        sheet({70, 37}, 3, 8, 0, edgeMargin),
        sheet({63.5, 38.1}, 3, 7, 2.5, {2, 2}),
        roll(38, 25),
    };
    return papers;
}

const LabelPaper &labelPaper(const QString &key)
{
    const auto found = std::find_if(labelPapers().cbegin(), labelPapers().cend(),
                                    [&](const LabelPaper &paper) { return paper.key == key; });
    return found == labelPapers().cend() ? labelPapers().constFirst() : *found;
}

} // namespace harrowby::app
