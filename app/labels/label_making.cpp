// SPDX-License-Identifier: MIT
#include "app/labels/label_making.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Sorts out what is too long; false when it was stopped.
bool collect(const LabelOrder &order, LabelsMade &made, QList<LabelRun> &runs, const WorkWatch &watch)
{
    const LabelDrawing drawing(order.plan.paper, order.plan.dotsPerInch);
    for (qsizetype i = 0; i < order.rows.size(); ++i) {
        if (!watch({u"The labels are being laid out \u2026"_s, percentOf(i, order.rows.size())}))
            return false;
        const LabelRow &row = order.rows.at(i);
        FittedLabel fitted = fitLabel(row, order.currency, drawing);
        if (!fitted.longCode.isEmpty())
            made.longCodes << u"%1: %2"_s.arg(labelItemWords(row.item), fitted.longCode);
        if (fitted.hasPrice)
            runs << LabelRun{std::move(fitted.label), row.count};
        else
            made.longPrices << labelItemWords(row.item);
    }
    return true;
}

} // namespace

FittedLabel fitLabel(const LabelRow &row, const QString &currency, const LabelDrawing &drawing)
{
    FittedLabel fitted;
    fitted.label = labelOf(row, currency);
    const QString &code = row.chosen().code;
    const std::optional<Symbol> &symbol = fitted.label.symbol;
    if (!code.isEmpty() && (!symbol || !drawing.takesSymbol(*symbol))) {
        fitted.longCode = code;
        fitted.label.symbol.reset();
    }
    fitted.hasPrice = drawing.takesPrice(fitted.label);
    return fitted;
}

QString tooLongWords(const QString &what, bool several)
{
    return several ? u"%1 are too long for the label"_s.arg(what) : u"%1 is too long for the label"_s.arg(what);
}

LabelsMade makeLabels(const LabelOrder &order, const WorkWatch &watch)
{
    LabelsMade made;
    QList<LabelRun> runs;
    made.isStopped = !collect(order, made, runs, watch);
    const bool fits = made.longCodes.isEmpty() && made.longPrices.isEmpty();
    if (made.isStopped || runs.isEmpty() || !(fits || order.asFits))
        return made;
    bool isStopped = false;
    made.pdf = labelsPdf(runs, order.plan, [&](const WorkStep &step) {
        isStopped = !watch(step);
        return !isStopped;
    });
    made.isStopped = isStopped;
    for (const LabelRun &run : std::as_const(runs))
        made.labels += run.count;
    return made;
}

} // namespace harrowby::app
