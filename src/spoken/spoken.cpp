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
#include <QSet>
#include <QTabBar>

namespace harrowby {

namespace {

/// Widgets that were marked, until they are destroyed. Qt makes an interface for each widget when it first tells of it,
/// whether or not anybody listens, and a property takes long to look up.
class Marks
{
public:
    void add(QObject *object)
    {
        if (contains(object))
            return;
        m_marked.insert(object);
        QObject::connect(object, &QObject::destroyed, [this](const QObject *gone) { m_marked.remove(gone); });
    }
    [[nodiscard]] bool contains(const QObject *object) const { return m_marked.contains(object); }

private:
    QSet<const QObject *> m_marked;
};

Marks &windows()
{
    static auto *const marks = new Marks; // for good: a host's static window may go after all else
    return *marks;
}

Marks &outcomeLabels()
{
    static auto *const marks = new Marks; // for good: a host's static window may go after all else
    return *marks;
}

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
        if (windows().contains(object) || dynamic_cast<const SpokenParts *>(object) != nullptr)
            return true;
    }
    return false;
}

using Maker = QAccessibleInterface *(*)(QWidget *);

template <typename Reader, typename Widget>
QAccessibleInterface *make(QWidget *widget)
{
    return new Reader(static_cast<Widget *>(widget));
}

QAccessibleInterface *makeGrouping(QWidget *widget)
{
    return new QAccessibleWidget(widget, QAccessible::Grouping);
}

/// Null for a widget of another kind.
Maker makerFor(const QWidget *widget)
{
    if (qobject_cast<const QTabBar *>(widget) != nullptr)
        return make<TabBarReader, QTabBar>;
    if (qobject_cast<const QComboBox *>(widget) != nullptr)
        return make<ComboReader, QComboBox>;
    if (qobject_cast<const QDialogButtonBox *>(widget) != nullptr)
        return make<ButtonBoxReader, QDialogButtonBox>;
    if (qobject_cast<const QDialog *>(widget) != nullptr)
        return make<DialogReader, QDialog>;
    if (ListReader::knows(widget))
        return make<ListReader, QAbstractItemView>;
    // Qt gives a QFrame with children the role of a window.
    const bool panel = widget->metaObject() == &QFrame::staticMetaObject || widget->inherits("harrowby::Panel");
    return panel ? makeGrouping : nullptr;
}

QAccessibleInterface *makeReader(const QString &, QObject *object)
{
    if (auto *label = qobject_cast<QLabel *>(object))
        return outcomeLabels().contains(label) ? new OutcomeReader(label) : nullptr;
    auto *widget = qobject_cast<QWidget *>(object);
    const Maker maker = widget != nullptr ? makerFor(widget) : nullptr;
    return maker != nullptr && isMarked(widget) ? maker(widget) : nullptr;
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
    windows().add(window);
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
    if (!outcomeLabels().contains(label)) {
        installReaders();
        forget(label);
        outcomeLabels().add(label);
    }
    // Screen readers announce a notification when it appears; Qt 6.4 has no announcement event.
    QAccessibleEvent shown(label, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shown);
}

} // namespace harrowby
