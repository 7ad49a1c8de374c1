// SPDX-License-Identifier: MIT
#include "tests/ui/widget_use.h"

#include <QCoreApplication>
#include <QWheelEvent>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace harrowby::test {

void turnWheel(QWidget &widget, int steps)
{
    const QPointF centre = widget.rect().center();
    QWheelEvent event(centre, widget.mapToGlobal(centre), {}, {0, steps * 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace harrowby::test
