// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_drawing.h"

#include <QWidget>

#include <optional>

namespace harrowby::app {

/// A label as it prints, as large as there is room.
class LabelPreview final : public QWidget
{
    Q_OBJECT

public:
    explicit LabelPreview(QWidget *parent = nullptr);

    /// Of a label whose parts fit. Nothing: an empty label.
    void show(const std::optional<Label> &label, const LabelPaper &paper, int dotsPerInch);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::optional<Label> m_label;
    LabelPaper m_paper;
    int m_dotsPerInch;
};

} // namespace harrowby::app
