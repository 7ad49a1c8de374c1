// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/bars.h"
#include "tables/paper.h"

#include <QtCharts/QChartView>

namespace harrowby::report {

/// Draws the bars, in the colours of the window that it stands in.
class SalesChart : public QChartView
{
    Q_OBJECT

public:
    explicit SalesChart(QWidget *parent = nullptr);

    void show(const Bars &bars);
    [[nodiscard]] const Bars &bars() const { return m_bars; }

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    enum class Labels { Usual, Small, Upright };

    void build();
    [[nodiscard]] Labels labelsFor(int wide) const;

    Bars m_bars;
    Labels m_labels = Labels::Usual;
};

/// The bars for paper: dark on white.
[[nodiscard]] tables::Figure paperFigure(const Bars &bars);

} // namespace harrowby::report
