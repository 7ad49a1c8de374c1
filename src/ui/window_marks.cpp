// SPDX-License-Identifier: MIT
#include "ui/window_marks.h"

#include "input/code_place.h"
#include "ui/controls.h"
#include "ui/dashboard_elements.h"
#include "ui/widgets/pick_list.h"

#include <harrowby/window_marks.h>

#include <QLabel>
#include <QLineEdit>
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
    // Figures; the categories that are chosen while selling, as no code is one; and the user name: what is scanned
    // before the login is refused by the gate, and not left in the entry.
    for (QWidget *entry :
         std::initializer_list<QWidget *>{controls.Combo1, controls.Combo2, controls.Combo4, controls.Combo8,
                                          controls.Combo10, controls.Combo13, controls.Combo14, controls.Text3})
        keepCodesOut(*entry);
}

} // namespace harrowby
