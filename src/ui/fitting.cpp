// SPDX-License-Identifier: MIT
#include "ui/fitting.h"

#include "theme/style.h"
#include "ui/form_layout.h"
#include "ui/stage_layout.h"
#include "ui/widget_factory.h"
#include "ui/widgets/form_panel.h"

#include <QBoxLayout>
#include <QEvent>
#include <QGridLayout>
#include <QMainWindow>

namespace harrowby {

Fitting::Fitting(QMainWindow &form, const Controls &controls) : QObject(&form), m_form(form), m_controls(controls)
{
    form.installEventFilter(this);
}

void Fitting::fit()
{
    const Shape shape = shapeOf(m_form.size());
    const Density density = densityOf(m_form.size());
    if (shape == m_shape && density == m_density)
        return;
    if (density == Density::Compact) {
        for (FormPanel *form : m_form.findChildren<FormPanel *>())
            form->makeScrollable();
    }
    setDensity(density);
    auto &stage = static_cast<QGridLayout &>(*m_controls.Frame1->parentWidget()->layout());
    arrangePanels(m_controls, stage, shape, density);
    if (shape != m_shape)
        arrangeForms(m_controls, shape);
    m_shape = shape;
}

bool Fitting::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        fit();
    return QObject::eventFilter(watched, event);
}

void Fitting::setDensity(Density density)
{
    if (density == m_density)
        return;
    m_density = density;
    setTillDensity(m_form, density);
    for (Panel *panel : m_form.findChildren<Panel *>())
        panel->setDensity(density);
    static_cast<FormPanel *>(m_controls.Frame9)->page()->setMaximumWidth(measuresOf(density).pageWidth);
    setFrame();
}

/// Margins around the actions and the tabs; a low window has no room for them.
void Fitting::setFrame()
{
    const bool isCompact = m_density == Density::Compact;
    // Captions lie between the rows of the custom sale, so these may be closer; the keypad leaves it little room.
    static_cast<QGridLayout *>(m_controls.Frame3->layout())
        ->setVerticalSpacing(isCompact ? controlGap / 2 : controlGap);
    QLayout &rows = *m_form.centralWidget()->layout();
    rows.setContentsMargins(isCompact ? QMargins(2, 4, 2, 0) : QMargins(6, 8, 6, 0));
    QMargins tabs = rows.itemAt(1)->layout()->contentsMargins();
    tabs.setBottom(isCompact ? 0 : controlGap);
    rows.itemAt(1)->layout()->setContentsMargins(tabs);
}

} // namespace harrowby
