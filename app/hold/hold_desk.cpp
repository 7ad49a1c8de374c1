// SPDX-License-Identifier: MIT
#include "app/hold/hold_desk.h"

#include "app/boxes/office_box.h"
#include "app/hold/hold_dialog.h"
#include "app/hold/hold_words.h"
#include "app/hold/list_dialog.h"
#include "app/shop/failure_text.h"
#include "app/shop/notice_place.h"
#include "basic/numbers.h"

#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Held = CartHolder::Held;
using Taken = HeldCarts::Taken;

std::unique_ptr<QPushButton> makeButton(const QString &caption, const QString &name, const QString &description)
{
    auto button = std::make_unique<QPushButton>(caption);
    button->setObjectName(name);
    button->setToolTip(description);
    button->setAccessibleDescription(description);
    return button;
}

/// A dialog that its parent may destroy while it is shown.
template <typename Dialog>
class Asking
{
public:
    template <typename... Arguments>
    explicit Asking(Arguments &&...arguments) : m_dialog(new Dialog(std::forward<Arguments>(arguments)...))
    {
    }
    ~Asking() { delete m_dialog.data(); }
    Asking(const Asking &) = delete;
    Asking &operator=(const Asking &) = delete;

    [[nodiscard]] bool isAccepted() { return m_dialog && m_dialog->exec() == QDialog::Accepted && m_dialog; }
    [[nodiscard]] Dialog *operator->() const { return m_dialog.data(); }

private:
    QPointer<Dialog> m_dialog;
};

/// What is not told by the records' own notice: the cart's place.
QString stillHere()
{
    return u"The cart was not held: it is here as before."_s;
}

} // namespace

HoldDesk::HoldDesk(Counter &counter, Records &records, Say say) :
    m_counter(counter), m_carts(records), m_holder(counter, m_carts), m_say(std::move(say))
{
}

void HoldDesk::furnish()
{
    auto hold = makeButton(u"&Hold"_s, u"holdCart"_s, u"Puts the cart aside for later"_s);
    auto recall = makeButton(u"R&ecall"_s, u"recallCart"_s, u"Brings a cart back that was put aside"_s);
    connect(hold.get(), &QPushButton::clicked, this, &HoldDesk::hold);
    connect(recall.get(), &QPushButton::clicked, this, &HoldDesk::recall);
    for (auto *button : {&hold, &recall}) {
        if (m_counter.addButton(button->get()))
            static_cast<void>(button->release()); // the window's own now
    }
}

/// Nothing is asked while a box is open, nor of nobody: the window's own refusal says so.
bool HoldDesk::isReady()
{
    if (m_counter.isBusy() || !m_counter.isOpen())
        return false;
    if (!m_counter.user()) {
        std::vector<CounterLine> none;
        (void)m_counter.takeCart(none); // asks at the login's gate, which shows its box
        return false;
    }
    m_counter.finishReading(); // no list stays half read while a box is open
    return true;
}

void HoldDesk::hold()
{
    if (!isReady())
        return;
    const std::vector<CounterLine> lines = m_counter.cart();
    if (lines.empty())
        return m_say(u"The cart is empty: there is nothing to hold."_s, true);
    const auto carts = m_carts.list();
    if (!carts)
        return m_say(stillHere(), true);
    Asking<HoldDialog> dialog(cartWords(lines.size(), asStored(m_counter.total())), proposedWord(*carts),
                              salesWindow());
    while (dialog.isAccepted()) {
        const QString word = dialog->word();
        const Held held = m_holder.hold(word);
        if (held != Held::WordTaken)
            return tellHeld(held, word);
        dialog->refuse(u"A cart is held as \"%1\" already. Take another word or number."_s.arg(word));
    }
}

void HoldDesk::tellHeld(Held held, const QString &word)
{
    switch (held) {
    case Held::Done:
        return m_say(u"Held as \"%1\"."_s.arg(word), false);
    case Held::Both:
        return tellInOffice(salesWindow(), u"The cart is held as \"%1\", but it could not be taken off the counter. "
                                           "Do not sell it here: clear it."_s.arg(word));
    case Held::NotKnown:
        return tellInOffice(salesWindow(),
                            u"It is not known whether the cart is held as \"%1\". It is still here. As soon as the "
                            "server answers, a notice says how it was: until then, sell it neither from here nor from "
                            "the list of held carts."_s.arg(word));
    case Held::Elsewhere:
        return tellInOffice(salesWindow(),
                            u"The cart was held as \"%1\" and has been recalled at another till, but it "
                            "could not be taken off the counter. Do not sell it here: clear it."_s.arg(word));
    case Held::WordTaken:
    case Held::CartEmpty:
    case Held::NobodyThere:
    case Held::NotHeld:
        return m_say(stillHere(), true);
    }
}

void HoldDesk::recall()
{
    if (!isReady())
        return;
    QStringList gone; // a damaged row, too, which can be listed and not be taken
    for (;;) {
        auto carts = m_carts.list();
        if (!carts)
            return tellInOffice(salesWindow(), failureWords(u"The held carts could not be read."_s, carts.error()));
        carts->removeIf([&gone](const HeldCart &cart) { return gone.contains(cart.id); });
        if (carts->isEmpty())
            return m_say(u"No cart is held."_s, true);
        Asking<ListDialog> dialog(
            ListDialog::Words{u"Recall"_s, u"Which cart comes back?"_s, u"Held carts"_s, u"&Recall"_s, 1},
            heldTable(*carts), salesWindow());
        if (!dialog.isAccepted())
            return;
        const QString word = dialog->chosen();
        const auto chosen =
            std::find_if(carts->cbegin(), carts->cend(), [&](const HeldCart &cart) { return cart.word == word; });
        if (chosen == carts->cend() || recallOne(*chosen))
            return;
        gone << chosen->id;
    }
}

/// False when another one is to be chosen.
bool HoldDesk::recallOne(const HeldCart &cart)
{
    if (!mayAdd(cart.word))
        return true;
    std::vector<CounterMisfit> misfits;
    switch (m_holder.recall(cart, misfits)) {
    case Taken::Gone:
        tellInOffice(salesWindow(), u"\"%1\" has just been recalled at another till."_s.arg(cart.word));
        return false;
    case Taken::NotPut:
    case Taken::Failed:
        m_say(u"\"%1\" was not recalled: it is still held."_s.arg(cart.word), true);
        return true;
    case Taken::StillListed:
        tellInOffice(salesWindow(), u"\"%1\" is in the cart, but it could not be taken off the list of held carts. Do "
                                    "not recall it again."_s.arg(cart.word));
        break;
    case Taken::NotKnown:
        tellInOffice(salesWindow(),
                     u"\"%1\" is in the cart, but it is not known whether it was taken off the list of held carts. As "
                     "soon as the server answers, a notice says how it was. Do not recall it again."_s.arg(cart.word));
        break;
    case Taken::Done:
        m_say(u"\"%1\" is back in the cart."_s.arg(cart.word), false);
        break;
    }
    if (!misfits.empty())
        tellMisfits(cart.word, misfits);
    return true;
}

bool HoldDesk::mayAdd(const QString &word) const
{
    const std::vector<CounterLine> lines = m_counter.cart();
    if (lines.empty())
        return true;
    return askInOffice(salesWindow(),
                       u"The cart is not empty (%1). Add \"%2\" to it?\nTo serve the other customer alone, cancel, and "
                       "hold this cart first."_s.arg(cartWords(lines.size(), asStored(m_counter.total())), word),
                       u"&Add"_s);
}

void HoldDesk::tellMisfits(const QString &word, const std::vector<CounterMisfit> &misfits) const
{
    Asking<ListDialog> list(
        ListDialog::Words{
            u"Recall"_s, u"Not all of \"%1\" is as it was:"_s.arg(word), u"What is not as it was"_s, {}, 0},
        misfitTable(misfits), salesWindow());
    (void)list.isAccepted();
}

} // namespace harrowby::app
