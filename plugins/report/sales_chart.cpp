// SPDX-License-Identifier: MIT
#include "plugins/report/sales_chart.h"

#include "theme/colours.h"

#include <QEvent>
#include <QFontMetrics>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QGuiApplication>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QHorizontalBarSeries>
#include <QtCharts/QValueAxis>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace harrowby::report {

namespace {

constexpr double labelSize = 9;
constexpr double smallLabel = 7;
constexpr int labelGap = 9;      ///< what the axis keeps free beside a label
constexpr int amountsWidth = 80; ///< of the other axis and the margins

constexpr int widestName = 210;

struct Ink
{
    QColor bar;
    QColor text;
    QColor line;
    QColor ground;
};

Ink screenInk()
{
    const Colours &colours = Colours::current();
    return {colours.accent, colours.text, colours.border, colours.field};
}

Ink paperInk()
{
    return {QColor(lightAccent), Qt::black, QColor(200, 200, 200), Qt::white};
}

QFont chartFont(double points)
{
    QFont font = QGuiApplication::font();
    font.setPointSizeF(points);
    return font;
}

/// QBarCategoryAxis merges equal labels, so zero-width characters make each one unique.
QString distinct(const QString &label, int place)
{
    return label + QString(place, QChar(0x200b));
}

QStringList labelsOf(const Bars &bars)
{
    const QFontMetrics metrics(chartFont(labelSize));
    QStringList labels;
    for (const Bar &bar : bars.bars) {
        const QString shown = metrics.elidedText(bar.label.simplified(), Qt::ElideRight, widestName);
        labels << distinct(shown.toHtmlEscaped(), static_cast<int>(labels.size()));
    }
    if (bars.across) // the first one on top
        std::reverse(labels.begin(), labels.end());
    return labels;
}

QBarSet *createSet(const Bars &bars, const Ink &ink)
{
    auto *set = new QBarSet(u"Amount"_s);
    QList<qreal> amounts;
    for (const Bar &bar : bars.bars)
        amounts << bar.amount;
    if (bars.across)
        std::reverse(amounts.begin(), amounts.end());
    set->append(amounts);
    set->setColor(ink.bar);
    set->setBorderColor(ink.bar);
    set->setLabelColor(ink.text);
    return set;
}

QAbstractBarSeries *createSeries(const Bars &bars, const Ink &ink)
{
    QAbstractBarSeries *series = nullptr;
    if (bars.across)
        series = new QHorizontalBarSeries;
    else
        series = new QBarSeries;
    series->append(createSet(bars, ink));
    // A single bar is not stretched to the width of the window.
    series->setBarWidth(std::min(0.7, 0.12 * static_cast<double>(bars.bars.size())));
    return series;
}

void paintAxis(QAbstractAxis &axis, const Ink &ink)
{
    axis.setLabelsFont(chartFont(labelSize));
    axis.setLabelsColor(ink.text);
    axis.setLinePenColor(ink.line);
    axis.setGridLineColor(ink.line);
}

QBarCategoryAxis *createNames(const Bars &bars, const Ink &ink)
{
    auto *names = new QBarCategoryAxis;
    names->append(labelsOf(bars));
    names->setGridLineVisible(false);
    names->setLabelsAngle(bars.longLabels ? -90 : 0);
    paintAxis(*names, ink);
    return names;
}

QValueAxis *createAmounts(const Bars &bars, const Ink &ink)
{
    double least = 0.0;
    double most = 0.0;
    for (const Bar &bar : bars.bars) {
        least = std::min(least, bar.amount);
        most = std::max(most, bar.amount);
    }
    auto *amounts = new QValueAxis;
    amounts->setRange(least, most > least ? most : least + 1.0);
    amounts->setTickCount(5);
    amounts->applyNiceNumbers();
    amounts->setLabelFormat(most - least < 10.0 ? u"%.2f"_s : u"%.0f"_s);
    paintAxis(*amounts, ink);
    return amounts;
}

void fill(QChart &chart, const Bars &bars, const Ink &ink)
{
    chart.removeAllSeries();
    for (QAbstractAxis *axis : chart.axes()) {
        chart.removeAxis(axis);
        delete axis;
    }
    chart.setTitle(bars.title.toHtmlEscaped());
    chart.setTitleFont(chartFont(10.5));
    chart.setTitleBrush(ink.text);
    chart.setBackgroundBrush(ink.ground);
    if (bars.bars.empty())
        return;
    QAbstractBarSeries *series = createSeries(bars, ink);
    chart.addSeries(series);
    QAbstractAxis *names = createNames(bars, ink);
    QAbstractAxis *amounts = createAmounts(bars, ink);
    chart.addAxis(names, bars.across ? Qt::AlignLeft : Qt::AlignBottom);
    chart.addAxis(amounts, bars.across ? Qt::AlignBottom : Qt::AlignLeft);
    series->attachAxis(names);
    series->attachAxis(amounts);
}

void prepare(QChart &chart)
{
    chart.legend()->hide();
    chart.setAnimationOptions(QChart::NoAnimation);
    chart.setMargins({6, 2, 6, 2});
    chart.layout()->setContentsMargins(0, 0, 0, 0);
}

} // namespace

SalesChart::SalesChart(QWidget *parent) : QChartView(parent)
{
    prepare(*chart());
    chart()->setBackgroundRoundness(9);
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(NoFrame);
    setBackgroundBrush(Qt::NoBrush);
    setFocusPolicy(Qt::NoFocus); // the table shows the same figures and has the keyboard
    setMinimumHeight(120);
    build();
}

void SalesChart::show(const Bars &bars)
{
    m_bars = bars;
    setAccessibleName(bars.title);
    setAccessibleDescription(u"A bar chart; the table holds the figures."_s);
    build();
}

void SalesChart::build()
{
    m_labels = labelsFor(width());
    Bars bars = m_bars;
    bars.longLabels = m_labels == Labels::Upright;
    fill(*chart(), bars, screenInk());
    if (m_labels != Labels::Usual && !m_bars.longLabels) {
        for (QAbstractAxis *names : chart()->axes(Qt::Horizontal))
            names->setLabelsFont(chartFont(smallLabel));
    }
}

void SalesChart::resizeEvent(QResizeEvent *event)
{
    QChartView::resizeEvent(event);
    if (labelsFor(width()) != m_labels)
        build();
}

/// Labels that would be cut off beside each other are smaller, or stand upright where that is not enough.
SalesChart::Labels SalesChart::labelsFor(int wide) const
{
    if (m_bars.bars.empty() || m_bars.across)
        return Labels::Usual;
    const int room = (wide - amountsWidth) / static_cast<int>(m_bars.bars.size());
    const auto fits = [&](double size) {
        const QFontMetrics metrics(chartFont(size));
        return std::all_of(m_bars.bars.begin(), m_bars.bars.end(),
                           [&](const Bar &bar) { return metrics.horizontalAdvance(bar.label) + labelGap <= room; });
    };
    if (m_bars.longLabels || !fits(smallLabel))
        return Labels::Upright;
    return fits(labelSize) ? Labels::Usual : Labels::Small;
}

void SalesChart::changeEvent(QEvent *event)
{
    QChartView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        build();
}

tables::Figure paperFigure(const Bars &bars)
{
    return [bars](QPainter &painter, const QRectF &place) {
        constexpr double width = 900.0;
        QGraphicsScene scene;
        auto owned = std::make_unique<QChart>();
        QChart &chart = *owned;
        scene.addItem(owned.release());
        prepare(chart);
        chart.setBackgroundRoundness(0);
        fill(chart, bars, paperInk());
        chart.resize(width, width * place.height() / place.width());
        scene.setSceneRect(chart.geometry());
        scene.render(&painter, place, chart.geometry());
    };
}

} // namespace harrowby::report
