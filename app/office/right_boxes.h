// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

class QCheckBox;

namespace harrowby::app {

/// A switch for each of userRights(), with what the right allows.
class RightBoxes final : public QWidget
{
    Q_OBJECT

public:
    explicit RightBoxes(QWidget *parent = nullptr);

    /// Ticks those of these columns; locked ones are read only.
    void showRights(const QStringList &columns, bool locked);
    /// Breaks the words so that none is wider than this many pixels.
    void wrap(int width);

Q_SIGNALS:
    /// By a person.
    void switched(const QString &column, bool on);

private:
    QList<QCheckBox *> m_boxes; ///< in the order of userRights()
};

} // namespace harrowby::app
