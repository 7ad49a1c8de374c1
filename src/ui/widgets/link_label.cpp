// SPDX-License-Identifier: MIT
#include "ui/widgets/link_label.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>

namespace harrowby {

namespace {

class LinkAccessible final : public QAccessibleWidget
{
public:
    explicit LinkAccessible(LinkLabel *label) : QAccessibleWidget(label, QAccessible::Link) {}

    QString text(QAccessible::Text kind) const override
    {
        // The figure, even where a caption is its label.
        const bool unnamed = kind == QAccessible::Name && label()->accessibleName().isEmpty();
        return unnamed ? label()->text() : QAccessibleWidget::text(kind);
    }
    QStringList actionNames() const override { return QAccessibleWidget::actionNames() << pressAction(); }
    void doAction(const QString &action) override
    {
        if (action == pressAction())
            Q_EMIT label()->clicked();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    LinkLabel *label() const { return static_cast<LinkLabel *>(object()); }
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *label = qobject_cast<LinkLabel *>(object);
    return label ? new LinkAccessible(label) : nullptr;
}

} // namespace

LinkLabel::LinkLabel(QWidget *parent) : ElidedLabel(parent)
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(installed);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void LinkLabel::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space)
        Q_EMIT clicked();
    else
        ElidedLabel::keyPressEvent(event);
}

void LinkLabel::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT clicked();
    else
        ElidedLabel::mouseReleaseEvent(event);
}

} // namespace harrowby
