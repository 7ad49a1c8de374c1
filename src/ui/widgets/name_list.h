// SPDX-License-Identifier: MIT
#pragma once

#include "spoken/spoken.h"

#include <QListWidget>

namespace harrowby {

/// A list of names: plain text, elided where it is too long, with the whole in the tool tip. A click
/// selects a name, whatever modifier keys are held.
class NameList : public QListWidget, public SpokenParts
{
    Q_OBJECT

public:
    explicit NameList(QWidget *parent = nullptr);

    void pressPart(int row) override { setCurrentRow(row); }

protected:
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                                       const QEvent *event = nullptr) const override;
    bool viewportEvent(QEvent *event) override;
};

} // namespace harrowby
