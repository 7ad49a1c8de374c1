// SPDX-License-Identifier: MIT
#pragma once

#include <QShowEvent>
#include <QString>
#include <QWidget>

#include <optional>

namespace harrowby::app {

/// What is asked before the office is closed over something that would be lost.
struct LeavingQuestion
{
    QString text;
    QString action; ///< caption of the button that leaves all the same
};

/// One page of the store's office. It is built when it is turned to for the first time, or when a setting is looked
/// for, so its constructor reads nothing that takes long; readAnew() may.
class OfficePage : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Nothing when the page can be left as it is.
    [[nodiscard]] virtual std::optional<LeavingQuestion> leaving() const { return {}; }

    /// Each time that it is turned to, and when a store that could not be reached is there again.
    virtual void readAnew() {}

Q_SIGNALS:
    /// A backup is to take the store's place: the office asks its leaving questions, and closes for it.
    void restoreAsked(const QString &backup);
    /// What the office warns of beside the title may be true no more.
    void warningChanged();

protected:
    void showEvent(QShowEvent *event) override
    {
        QWidget::showEvent(event);
        if (!event->spontaneous())
            readAnew();
    }
};

} // namespace harrowby::app
