// SPDX-License-Identifier: MIT
#include "ui/counter/host_places.h"

#include "theme/measures.h"
#include "ui/controls.h"
#include "ui/widgets/button_strip.h"
#include "ui/widgets/enter_presses.h"
#include "ui/widgets/tab_strip.h"

#include <harrowby/window_marks.h>

#include <QAbstractButton>
#include <QBoxLayout>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QMainWindow>

#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

const auto buttonsName = u"HostButtons"_s;
const auto bannerName = u"HostBanner"_s;

/// Calls a function now and whenever the window has another size.
class Refit : public QObject
{
public:
    Refit(QWidget &form, QObject &parent, std::function<void()> fit) : QObject(&parent), m_fit(std::move(fit))
    {
        form.installEventFilter(this);
        m_fit();
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Resize)
            m_fit();
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> m_fit;
};

QBoxLayout &actionsOf(const QMainWindow &form)
{
    return *static_cast<QBoxLayout *>(form.centralWidget()->layout()->itemAt(0));
}

/// The title shows while all buttons of its row have their room.
void fitTitle(const QMainWindow &form, QWidget &strip)
{
    QBoxLayout &actions = actionsOf(form);
    int needed = actions.contentsMargins().left() + actions.contentsMargins().right();
    for (int i = 0; i < actions.count(); ++i)
        needed += actions.itemAt(i)->widget()->sizeHint().width() + actions.spacing();
    QWidget *title = actions.itemAt(0)->widget();
    title->setVisible(needed <= form.width());
    actions.setStretchFactor(&strip, title->isHidden() ? 1 : 0);
}

ButtonStrip &hostButtons(QMainWindow &form)
{
    if (auto *made = form.findChild<ButtonStrip *>(buttonsName))
        return *made;
    auto *strip = new ButtonStrip(form.centralWidget());
    strip->setObjectName(buttonsName);
    strip->setProperty(KeptInSightProperty, true);
    actionsOf(form).insertWidget(1, strip);
    strip->show();
    new Refit(form, *strip, [&form, strip] { fitTitle(form, *strip); });
    QObject::connect(strip, &ButtonStrip::wishChanged, strip, [&form, strip] { fitTitle(form, *strip); });
    return *strip;
}

QWidget &hostBanner(QMainWindow &form, const Controls &controls)
{
    if (auto *made = form.findChild<QWidget *>(bannerName))
        return *made;
    auto *place = new QWidget(controls.Frame4);
    place->setObjectName(bannerName);
    place->setProperty(KeptInSightProperty, true);
    place->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // a long text must not widen the side area
    auto *layout = new QVBoxLayout(place);
    layout->setContentsMargins(0, 0, 0, 0);
    auto &column = *static_cast<QBoxLayout *>(controls.Frame4->layout());
    column.insertWidget(column.indexOf(controls.Label5), place);
    new Refit(form, *place, [&form, place] { place->setFixedHeight(measuresOf(densityOf(form.size())).banner); });
    place->show();
    return *place;
}

} // namespace

void addHostButton(QMainWindow &form, const Controls &controls, QWidget *button)
{
    ButtonStrip &strip = hostButtons(form);
    QWidget *const before = strip.last() ? strip.last() : controls.TabStrip1;
    strip.add(button);
    QWidget::setTabOrder(before, button);
    if (qobject_cast<QAbstractButton *>(button))
        button->installEventFilter(new EnterPresses(button));
}

void setHostBanner(QMainWindow &form, const Controls &controls, QWidget *banner)
{
    QLayout &place = *hostBanner(form, controls).layout();
    while (const QLayoutItem *item = place.takeAt(0)) {
        delete item->widget();
        delete item;
    }
    if (!banner)
        return;
    place.addWidget(banner);
    banner->show();
}

} // namespace harrowby
