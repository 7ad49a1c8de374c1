// SPDX-License-Identifier: MIT
#include "ui/widgets/name_list.h"

#include "ui/widgets/plain_tool_tip.h"

#include <QHelpEvent>

namespace harrowby {

NameList::NameList(QWidget *parent) : QListWidget(parent)
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideRight);
    setUniformItemSizes(true);
}

/// Without this, Ctrl+click unselects the name.
QItemSelectionModel::SelectionFlags NameList::selectionCommand(const QModelIndex &index, const QEvent *) const
{
    return index.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

bool NameList::viewportEvent(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QListWidget::viewportEvent(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    showPlainToolTip(help->globalPos(), indexAt(help->pos()).data().toString(), viewport());
    return true;
}

} // namespace harrowby
