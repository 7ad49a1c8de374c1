// SPDX-License-Identifier: MIT
#include "app/labels/label_pdf.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr double tenthsPerMm = 10;

/// Puts label after label onto the pages.
class Pages
{
public:
    Pages(QPdfWriter &writer, QPainter &painter, const LabelPlan &plan) :
        m_writer(writer), m_painter(painter), m_plan(plan), m_drawing(plan.paper, plan.dotsPerInch), m_place(plan.place)
    {
    }

    void add(const Label &label)
    {
        if (m_hasLabels && m_place == 0)
            m_writer.newPage();
        const QPointF corner = m_plan.paper.corner(m_place) + QPointF(m_plan.nudge) / tenthsPerMm;
        m_hasLabels = true;
        m_place = m_plan.paper.placeAfter(1, m_place);
        m_drawing.draw(m_painter, label, {m_drawing.dots(corner.x()), m_drawing.dots(corner.y())});
    }

private:
    QPdfWriter &m_writer;
    QPainter &m_painter;
    const LabelPlan &m_plan;
    LabelDrawing m_drawing;
    int m_place; ///< of the next label
    bool m_hasLabels = false;
};

void prepare(QPdfWriter &writer, const LabelPlan &plan)
{
    writer.setResolution(plan.dotsPerInch);
    writer.setTitle(u"Labels"_s);
    writer.setCreator(u"Harrowby Inventory"_s);
    const QPageSize size(plan.paper.page, QPageSize::Millimeter, plan.paper.words, QPageSize::ExactMatch);
    writer.setPageLayout(QPageLayout(size, QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
}

qint64 countOf(const QList<LabelRun> &runs)
{
    qint64 count = 0;
    for (const LabelRun &run : runs)
        count += run.count;
    return count;
}

bool drawAll(Pages &pages, const QList<LabelRun> &runs, const WorkWatch &watch)
{
    const qint64 all = countOf(runs);
    qint64 done = 0;
    for (const LabelRun &run : runs) {
        for (int i = 0; i < run.count; ++i) {
            if (!watch({u"The labels are being drawn \u2026"_s, percentOf(done++, all)}))
                return false;
            pages.add(run.label);
        }
    }
    return true;
}

} // namespace

QByteArray labelsPdf(const QList<LabelRun> &runs, const LabelPlan &plan, const WorkWatch &watch)
{
    QByteArray pdf;
    QBuffer buffer(&pdf);
    if (!buffer.open(QIODevice::WriteOnly))
        return {};
    QPdfWriter writer(&buffer);
    prepare(writer, plan);
    QPainter painter;
    if (!painter.begin(&writer))
        return {};
    Pages pages(writer, painter, plan);
    const bool all = drawAll(pages, runs, watch);
    return painter.end() && all ? pdf : QByteArray();
}

} // namespace harrowby::app
