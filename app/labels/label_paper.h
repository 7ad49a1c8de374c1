// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>

namespace harrowby::app {

/// A roll or a sheet of labels; lengths in mm.
struct LabelPaper
{
    QString key;   ///< as it is saved
    QString words; ///< as a person reads it
    QSizeF page;
    QSizeF label;
    int columns = 1;
    int rows = 1;
    QPointF first;       ///< top left corner of the first label
    QSizeF step;         ///< from one label to the next
    QSizeF margin;       ///< stays blank within a label: what dies and printers need
    bool isRoll = false; ///< each label is a page

    [[nodiscard]] int labels() const { return columns * rows; }
    /// Top left corner of a label of a page, counted from 0, row by row.
    [[nodiscard]] QPointF corner(int place) const;
    /// Where the label behind so many stands, of which the first stands at `place`.
    [[nodiscard]] int placeAfter(qint64 count, int place) const;
    /// Pages that so many labels take, of which the first stands at `place` of the first page.
    [[nodiscard]] qint64 pages(qint64 count, int place) const;
};

/// All that can be chosen.
[[nodiscard]] const QList<LabelPaper> &labelPapers();
/// The paper of that key; the usual one for any other text.
[[nodiscard]] const LabelPaper &labelPaper(const QString &key);

} // namespace harrowby::app
