// SPDX-License-Identifier: MIT
#include "tests/app/hold_till.h"

#include "tables/table_view.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

void HoldTill::init()
{
    m_said.clear();
    m_dialogs = 0;
    m_acts.clear();
    m_poll.setInterval(1);
    connect(&m_poll, &QTimer::timeout, this, &HoldTill::meetDialog, Qt::UniqueConnection);
    m_till = std::make_unique<harrowby::test::Counter>();
    const harrowby::test::ShopFile &file = m_till->file;
    file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30);
    file.addItem(u"b2"_s, u"HONEY"_s, 4, 5);
    file.addItem(u"C3"_s, u"BREAD"_s, 1.2, 12);
    file.addItem(u"D4"_s, u"MILK"_s, 0.99, 12);
    file.addItem(u"E5"_s, u"EGGS"_s, 3, 12);
    FussyShop shop = fussyShop(file);
    m_records = std::move(shop.records);
    m_fuss = shop.fuss;
    m_carts = std::make_unique<HeldCarts>(*m_records);
    m_desk = std::make_unique<HoldDesk>(counter(), *m_records, [this](const QString &text, bool isRefusal) {
        m_said << (isRefusal ? u"! "_s : QString()) + text;
    });
    m_till->open();
    m_desk->furnish();
    m_till->logIn();
}

void HoldTill::cleanup()
{
    m_desk.reset();
    m_carts.reset();
    m_records.reset();
    m_till.reset();
}

void HoldTill::press(const QString &name) const
{
    auto *button = m_till->window().findChild<QPushButton *>(name);
    QVERIFY(button != nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
}

void HoldTill::inNextDialog(const std::function<void(QDialog &)> &act)
{
    m_acts.push_back(act);
    m_poll.start();
}

/// One dialog after the other: each act closes its own.
void HoldTill::meetDialog()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || m_acts.empty())
        return;
    const auto act = m_acts.front();
    m_acts.pop_front();
    ++m_dialogs;
    const QPointer<QDialog> shown(dialog);
    act(*dialog);
    if (QTest::currentTestFailed() && shown)
        shown->reject();
    if (m_acts.empty())
        m_poll.stop();
}

void HoldTill::answerNextBox(const QString &begin, const QString &button)
{
    inNextDialog([begin, button](QDialog &dialog) {
        auto *box = qobject_cast<QMessageBox *>(&dialog);
        if (box == nullptr)
            return dialog.reject();
        QVERIFY2(box->text().startsWith(begin), qPrintable(box->text()));
        for (QAbstractButton *one : box->buttons()) {
            if (one->text().remove(u'&') == button)
                return one->click();
        }
        box->reject();
    });
}

void HoldTill::answerRecall(const QString &word, const QString &button)
{
    inNextDialog([word, button](QDialog &dialog) {
        auto *list = dialog.findChild<tables::TableView *>();
        const auto found = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, word, 1, Qt::MatchExactly);
        if (!found.isEmpty())
            list->setCurrentIndex(found.constFirst());
        dialog.findChild<QPushButton *>(button)->click();
    });
}

void HoldTill::holdAs(const QString &word)
{
    CartHolder holder(counter(), *m_carts);
    QCOMPARE(holder.hold(word), CartHolder::Held::Done);
}

HeldCart HoldTill::heldCart(const QString &word)
{
    for (const HeldCart &cart : m_carts->list().value_or(QList<HeldCart>())) {
        if (cart.word == word)
            return cart;
    }
    return {};
}

QStringList HoldTill::heldWords()
{
    QStringList words;
    for (const HeldCart &cart : m_carts->list().value_or(QList<HeldCart>()))
        words << cart.word;
    return words;
}

QStringList HoldTill::heldLines() const
{
    return m_till->file
        .rows(u"SELECT Position, StockID, StockName, Quantity, Cost, CostByHand FROM HarrowbyHeldLine "
              "ORDER BY HeldID, Position"_s)
        .replaceInStrings(u".0|"_s, u"|"_s); // how an engine writes a whole number
}

} // namespace harrowby::app::test
