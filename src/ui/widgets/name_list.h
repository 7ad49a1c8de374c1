// SPDX-License-Identifier: MIT
#pragma once

#include <QListWidget>

namespace harrowby {

/// A list of names: plain text, elided where it is too long, with the whole in the tool tip.
class NameList : public QListWidget
{
    Q_OBJECT

public:
    explicit NameList(QWidget *parent = nullptr);

protected:
    bool viewportEvent(QEvent *event) override;
};

} // namespace harrowby
