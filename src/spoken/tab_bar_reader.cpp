// SPDX-License-Identifier: MIT
#include "spoken/tab_bar_reader.h"

#include "spoken/spoken.h"

#include <QKeySequence>
#include <QPointer>
#include <QTabBar>

namespace harrowby {

namespace {

QString withoutAccelerator(const QString &caption)
{
    QString plain;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption.at(i) == u'&' && ++i == caption.size())
            break;
        plain += caption.at(i);
    }
    return plain;
}

class TabReader final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    TabReader(QTabBar *bar, int index) : m_bar(bar), m_index(index) {}

    [[nodiscard]] int index() const { return m_index; }

    [[nodiscard]] bool isValid() const override { return m_bar && m_index < m_bar->count(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::PageTab; }
    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_bar.data());
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid)
            return state;
        const bool selected = m_bar->currentIndex() == m_index;
        state.selectable = true;
        state.selected = selected;
        state.focusable = m_bar->focusPolicy() != Qt::NoFocus;
        state.focused = selected && m_bar->hasFocus();
        state.disabled = !m_bar->isEnabled() || !m_bar->isTabEnabled(m_index);
        state.invisible = !m_bar->isVisible() || !m_bar->isTabVisible(m_index);
        return state;
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        if (!isValid())
            return {};
        const QString caption = m_bar->tabText(m_index);
        switch (kind) {
        case QAccessible::Name: {
            const QString given = m_bar->accessibleTabName(m_index);
            return given.isEmpty() ? withoutAccelerator(caption) : given;
        }
        case QAccessible::Description:
            return m_bar->tabToolTip(m_index);
        case QAccessible::Accelerator:
            return QKeySequence::mnemonic(caption).toString(QKeySequence::NativeText);
        default:
            return {};
        }
    }
    void setText(QAccessible::Text, const QString &) override {}

    [[nodiscard]] QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect tab = m_bar->tabRect(m_index);
        return {m_bar->mapToGlobal(tab.topLeft()), tab.size()};
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }
    void doAction(const QString &action) override
    {
        if (action != pressAction() || !isValid())
            return;
        if (auto *parts = dynamic_cast<SpokenParts *>(m_bar.data()))
            parts->pressPart(m_index);
        else
            m_bar->setCurrentIndex(m_index);
    }

protected:
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }

private:
    QPointer<QTabBar> m_bar;
    int m_index;
};

} // namespace

TabBarReader::TabBarReader(QTabBar *bar) :
    QAccessibleWidget(bar, QAccessible::PageTabList), m_selected(bar->currentIndex())
{
    m_changes = QObject::connect(bar, &QTabBar::currentChanged, bar, [this](int current) { tellSelection(current); });
}

TabBarReader::~TabBarReader()
{
    QObject::disconnect(m_changes);
    for (const QAccessible::Id tab : std::as_const(m_tabs))
        QAccessible::deleteAccessibleInterface(tab);
}

QTabBar *TabBarReader::bar() const
{
    return static_cast<QTabBar *>(widget());
}

int TabBarReader::childCount() const
{
    return bar()->count();
}

QAccessibleInterface *TabBarReader::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    if (const QAccessible::Id known = m_tabs.value(index))
        return QAccessible::accessibleInterface(known);
    auto *tab = new TabReader(bar(), index);
    m_tabs.insert(index, QAccessible::registerAccessibleInterface(tab));
    return tab;
}

QAccessibleInterface *TabBarReader::childAt(int x, int y) const
{
    return child(bar()->tabAt(bar()->mapFromGlobal(QPoint(x, y))));
}

int TabBarReader::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *tab = dynamic_cast<const TabReader *>(child);
    return tab != nullptr ? tab->index() : -1;
}

QAccessibleInterface *TabBarReader::focusChild() const
{
    return bar()->hasFocus() ? child(bar()->currentIndex()) : nullptr;
}

/// QTabBar announces the tab that became selected; this announces the one that no longer is.
void TabBarReader::tellSelection(int current)
{
    const int before = std::exchange(m_selected, current);
    if (before < 0 || before == current || before >= childCount())
        return;
    QAccessibleEvent deselected(bar(), QAccessible::Selection);
    deselected.setChild(before);
    QAccessible::updateAccessibility(&deselected);
}

} // namespace harrowby
