// SPDX-License-Identifier: MIT
#pragma once

#include "theme/measures.h"
#include "ui/controls.h"

#include <QObject>

namespace harrowby {

/// Fits a window's controls to its size: places the panels, sets the theme's density, and lets panels with too little
/// room scroll. Owned by the window.
class Fitting : public QObject
{
    Q_OBJECT

public:
    Fitting(QMainWindow &form, const Controls &controls);

    /// Does so now; nothing while the window's shape and density stay the same.
    void fit();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setDensity(Density density);
    void setFrame();

    QMainWindow &m_form;
    Controls m_controls;
    Shape m_shape = Shape::Wide;
    Density m_density = Density::Usual;
};

} // namespace harrowby
