// SPDX-License-Identifier: MIT
#include "spoken/spoken.h"

#include "spoken/button_box_reader.h"
#include "spoken/combo_reader.h"
#include "spoken/dialog_reader.h"
#include "spoken/list_reader.h"
#include "spoken/tab_bar_reader.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QTabBar>

namespace harrowby {

namespace {

constexpr auto mark = "harrowbySpeaksTruly";
constexpr auto outcomeMark = "harrowbySpeaksOutcomes";

class OutcomeReader final : public QAccessibleWidget
{
public:
    explicit OutcomeReader(QLabel *label) : QAccessibleWidget(label, QAccessible::Notification) {}
    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? static_cast<QLabel *>(widget())->text() : QAccessibleWidget::text(kind);
    }
};

bool isMarked(const QObject *object)
{
    for (; object != nullptr; object = object->parent()) {
        if (dynamic_cast<const SpokenParts *>(object) != nullptr || object->property(mark).isValid())
            return true;
    }
    return false;
}

QAccessibleInterface *readerOf(QWidget *widget)
{
    if (auto *bar = qobject_cast<QTabBar *>(widget))
        return new TabBarReader(bar);
    if (auto *combo = qobject_cast<QComboBox *>(widget))
        return new ComboReader(combo);
    if (auto *box = qobject_cast<QDialogButtonBox *>(widget))
        return new ButtonBoxReader(box);
    if (auto *dialog = qobject_cast<QDialog *>(widget))
        return new DialogReader(dialog);
    if (ListReader::knows(widget))
        return new ListReader(static_cast<QAbstractItemView *>(widget));
    // Qt gives a QFrame with children the role of a window.
    const bool panel = widget->metaObject() == &QFrame::staticMetaObject || widget->inherits("harrowby::Panel");
    return panel ? new QAccessibleWidget(widget, QAccessible::Grouping) : nullptr;
}

QAccessibleInterface *makeReader(const QString &, QObject *object)
{
    if (auto *label = qobject_cast<QLabel *>(object))
        return label->property(outcomeMark).isValid() ? new OutcomeReader(label) : nullptr;
    auto *widget = qobject_cast<QWidget *>(object);
    return widget != nullptr && isMarked(widget) ? readerOf(widget) : nullptr;
}

void installReaders()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeReader);
        return true;
    }();
    Q_UNUSED(installed);
}

/// Drops the interface that Qt has already made and cached for this widget.
void forget(QObject *widget)
{
    if (QAccessibleInterface *told = QAccessible::queryAccessibleInterface(widget))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(told));
}

} // namespace

void speakTruly(QWidget *window)
{
    installReaders();
    if (QAccessible::isActive()) {
        for (QWidget *widget : window->findChildren<QWidget *>())
            forget(widget);
    }
    window->setProperty(mark, true);
}

SpokenParts::SpokenParts()
{
    installReaders();
}

SpokenParts::~SpokenParts() = default;

void reportOutcome(QLabel *label, const QString &text)
{
    label->setText(text);
    if (text.isEmpty() || !QAccessible::isActive())
        return;
    if (!label->property(outcomeMark).isValid()) {
        installReaders();
        forget(label);
        label->setProperty(outcomeMark, true);
    }
    // Screen readers announce a notification when it appears; Qt 6.4 has no announcement event.
    QAccessibleEvent shown(label, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shown);
}

} // namespace harrowby
