// SPDX-License-Identifier: MIT
#include "ui/widgets/quick_sale_reader.h"

#include "ui/widgets/quick_sale_button.h"

#include <QAccessibleWidget>

namespace harrowby {

namespace {

class QuickSaleReader final : public QAccessibleWidget
{
public:
    explicit QuickSaleReader(QuickSaleButton *button) : QAccessibleWidget(button, QAccessible::Button) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? button()->spokenName() : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.pressed = button()->isDown();
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override
    {
        return button()->isEnabled() ? QStringList{pressAction()} + QAccessibleWidget::actionNames() : QStringList();
    }
    void doAction(const QString &action) override
    {
        if (action == pressAction())
            button()->click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    [[nodiscard]] QuickSaleButton *button() const { return static_cast<QuickSaleButton *>(widget()); }
};

QAccessibleInterface *makeReader(const QString &, QObject *object)
{
    auto *button = qobject_cast<QuickSaleButton *>(object);
    return button != nullptr ? new QuickSaleReader(button) : nullptr;
}

} // namespace

void installQuickSaleReader()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeReader);
        return true;
    }();
    Q_UNUSED(installed);
}

} // namespace harrowby
