// SPDX-License-Identifier: MIT
#pragma once

#include "theme/measures.h"
#include "ui/controls.h"

#include <QObject>

namespace harrowby {

/// Keeps the controls of a window fitting its size: where the panels stand, how dense their looks are, and that what
/// has too little room can be scrolled. Owned by the window.
class Fitting : public QObject
{
    Q_OBJECT

public:
    Fitting(QMainWindow &form, const Controls &controls);

    /// Does so now. It does nothing while the window stays of its kind.
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
