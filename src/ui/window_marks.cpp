// SPDX-License-Identifier: MIT
#include "ui/window_marks.h"

#include "ui/controls.h"
#include "ui/dashboard_elements.h"

#include <harrowby/window_marks.h>

#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QStatusBar>

namespace harrowby {

void markForHost(QMainWindow &form, const Controls &controls)
{
    form.setProperty(SalesWindowProperty, true);
    for (QWidget *part : std::initializer_list<QWidget *>{controls.Label5, controls.Label9, controls.Label15,
                                                          controls.Command14, controls.StatusBar1})
        part->setProperty(KeptInSightProperty, true);
    for (const int figure : Dashboard::figures)
        controls.Label6.at(static_cast<size_t>(figure))->setProperty(KeptInSightProperty, true);
}

} // namespace harrowby
