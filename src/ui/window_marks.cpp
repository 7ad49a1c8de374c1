// SPDX-License-Identifier: MIT
#include "ui/window_marks.h"

#include "ui/controls.h"

#include <harrowby/window_marks.h>

namespace harrowby {

void markForHost(QMainWindow &form, const Controls &controls)
{
    form.setProperty(SalesWindowProperty, true);
    const auto &figures = controls.Label6;
    for (QWidget *part : std::initializer_list<QWidget *>{controls.Label5, controls.Label9, controls.Label15,
                                                          figures.at(3), figures.at(4), figures.at(8), figures.at(9),
                                                          controls.Command14, controls.StatusBar1})
        part->setProperty(KeptInSightProperty, true);
}

} // namespace harrowby
