// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_drawing.h"
#include "app/work/work_step.h"

#include <QByteArray>
#include <QList>
#include <QPoint>

namespace harrowby::app {

/// A label, so many times.
struct LabelRun
{
    Label label;
    int count = 1;
};

/// How they are printed.
struct LabelPlan
{
    LabelPaper paper;
    int dotsPerInch = 0;
    int place = 0; ///< on the first page, counted from 0; a roll has one place
    QPoint nudge;  ///< to the right and down, in tenths of mm
};

/// A PDF with all of them, one after the other. Empty when `watch` has stopped it, or when it could not be drawn. May
/// be called on any thread.
[[nodiscard]] QByteArray labelsPdf(const QList<LabelRun> &runs, const LabelPlan &plan, const WorkWatch &watch);

} // namespace harrowby::app
