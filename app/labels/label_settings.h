// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_paper.h"
#include "app/shop/office_settings.h"

#include <QPoint>
#include <QString>

namespace harrowby::app {

/// How this machine prints on one paper.
struct LabelSetting
{
    static constexpr int mostNudge = 100;

    int dotsPerInch = 0; ///< of the printer
    QPoint nudge;        ///< to the right and down, in tenths of mm
    QString printer;     ///< as the print service calls it; empty while none is chosen
    bool operator==(const LabelSetting &) const = default;
};

/// How fine printers of labels print, in dots per inch.
[[nodiscard]] const QList<int> &labelDots();

/// The paper that was chosen last.
[[nodiscard]] const LabelPaper &savedLabelPaper(const OfficeSettings &settings);
bool saveLabelPaper(const OfficeSettings &settings, const LabelPaper &paper);

[[nodiscard]] LabelSetting readLabelSetting(const OfficeSettings &settings, const LabelPaper &paper);
/// False when something of it could not be saved.
bool saveLabelSetting(const OfficeSettings &settings, const LabelPaper &paper, const LabelSetting &setting);

} // namespace harrowby::app
