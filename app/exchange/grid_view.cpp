// SPDX-License-Identifier: MIT
#include "app/exchange/grid_view.h"

#include "input/touch_target.h"

#include <QHeaderView>

#include <algorithm>

namespace harrowby::app {

namespace {

constexpr int headingExtra = 12; // the style's bold letters, which the hint leaves out
constexpr int cellPadding = 32;  // as the style has it
constexpr qsizetype longestLine = 200;

} // namespace

GridView::GridView(const QString &objectName, const QString &spoken, QWidget *parent) : QTreeView(parent)
{
    setObjectName(objectName);
    setAccessibleName(spoken);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionBehavior(SelectRows);
    setHorizontalScrollMode(ScrollPerPixel);
    header()->setMinimumHeight(touchHeight);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(false);
}

void GridView::fitColumns(int most, bool lastTakesRest)
{
    const int widest = most * fontMetrics().averageCharWidth();
    const int count = model() != nullptr ? model()->columnCount() : 0;
    header()->setStretchLastSection(lastTakesRest);
    ensurePolished(); // what follows measures with the style's fonts
    header()->ensurePolished();
    for (int column = 0; column < (lastTakesRest ? count - 1 : count); ++column) {
        const int needed = std::max(header()->sectionSizeHint(column) + headingExtra, sizeHintForColumn(column));
        header()->resizeSection(column, std::min(needed, widest));
    }
}

void GridView::widen(int column, int letters)
{
    const int needed = letters * fontMetrics().averageCharWidth() + cellPadding;
    header()->resizeSection(column, std::max(header()->sectionSize(column), needed));
}

QString lineOf(const QString &text)
{
    QString line = text.left(longestLine + 1);
    line.replace(QStringLiteral("\r\n"), QStringLiteral("\u23ce"));
    for (QChar &letter : line) {
        if (letter == u'\n' || letter == u'\r')
            letter = u'\u23ce';
        else if (letter.category() == QChar::Other_Control)
            letter = u'\u00b7';
    }
    if (line.size() > longestLine)
        line = line.left(longestLine - 1) + u'\u2026';
    return line;
}

} // namespace harrowby::app
