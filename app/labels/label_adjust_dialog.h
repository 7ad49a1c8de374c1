// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_settings.h"

#include <QDialog>

class QComboBox;
class QLayout;

namespace harrowby::app {

class StepEntry;

/// Where labels come out on a paper, and how fine the printer prints. Kept on this machine.
class LabelAdjustDialog final : public QDialog
{
    Q_OBJECT

public:
    LabelAdjustDialog(const LabelPaper &paper, LabelSetting setting, QWidget *parent = nullptr);

    [[nodiscard]] LabelSetting chosen() const;

private:
    void createEntries();
    [[nodiscard]] QLayout *makeForm();
    [[nodiscard]] QLayout *makeButtons();

    LabelSetting m_setting;
    QComboBox *m_dots = nullptr;
    StepEntry *m_right = nullptr;
    StepEntry *m_down = nullptr;
};

} // namespace harrowby::app
