// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_list.h"
#include "app/labels/label_pdf.h"

#include <QByteArray>
#include <QStringList>

namespace harrowby::app {

/// A label as its paper takes it.
struct FittedLabel
{
    Label label;           ///< without its bars when they are too long
    QString longCode;      ///< whose bars are too long or cannot be made; empty when there is none
    bool hasPrice = false; ///< whether the whole price fits, which is never cut
};

[[nodiscard]] FittedLabel fitLabel(const LabelRow &row, const QString &currency, const LabelDrawing &drawing);

/// "These codes are too long for the label": what is said of a label that does not fit, with the words for what.
[[nodiscard]] QString tooLongWords(const QString &what, bool several);

/// What is to be printed.
struct LabelOrder
{
    QList<LabelRow> rows;
    LabelPlan plan;
    QString currency;
    bool asFits = false; ///< without the codes that are too long, and without the labels whose price is
};

/// What became of it.
struct LabelsMade
{
    QByteArray pdf; ///< empty when there is something too long, and it was not to be made as it fits
    qint64 labels = 0;
    QStringList longCodes;  ///< the items, each with its code
    QStringList longPrices; ///< the items
    bool isStopped = false;
};

/// May be called on any thread.
[[nodiscard]] LabelsMade makeLabels(const LabelOrder &order, const WorkWatch &watch);

} // namespace harrowby::app
