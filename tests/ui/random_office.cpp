// SPDX-License-Identifier: MIT
#include "tests/ui/random_user.h"

#include "ui/widgets/pick_list.h"

#include <QListWidget>

#include <array>

using namespace Qt::StringLiterals;

// A manager's actions at random, likely enough to be valid that some of them succeed.
namespace harrowby::test {

namespace {

QString anItem(QRandomGenerator &random)
{
    const int number = random.bounded(30);
    return u"A%1  |  ITEM %2"_s.arg(number).arg(10 + number);
}

/// Mostly a valid number.
QString aNumber(QRandomGenerator &random)
{
    return chance(random, 75) ? QString::number(random.bounded(1, 60)) : randomText(random);
}

} // namespace

void RandomUser::enterStock(QRandomGenerator &random)
{
    const QString name = chance(random, 60) ? u"ITEM %1"_s.arg(random.bounded(10, 60)) : randomText(random);
    const std::array ids{u"(Auto ID)"_s, u"A%1"_s.arg(random.bounded(40)), randomText(random)};
    m_counter.setText("Combo6", oneOf(ids, random));
    m_counter.setText("Combo5", chance(random, 70) ? u"TEA"_s : randomText(random));
    m_counter.setText("Combo7", name);
    for (const char *field : {"Combo8", "Combo13", "Combo14"})
        m_counter.setText(field, aNumber(random));
    m_counter.setText("Combo15", chance(random, 80) ? u"enabled"_s : randomText(random));
    m_counter.click("Command16");
}

void RandomUser::reorder(QRandomGenerator &random)
{
    if (chance(random, 30))
        return m_counter.click("Command23");
    m_counter.setText("Combo11", chance(random, 80) ? anItem(random) : randomText(random));
    m_counter.setText("Combo10", aNumber(random));
    m_counter.click("Command17");
}

void RandomUser::sellByHand(QRandomGenerator &random)
{
    m_counter.setText("Combo3", chance(random, 80) ? anItem(random) : randomText(random));
    m_counter.setText("Combo4", aNumber(random));
    m_counter.click("Command15");
}

void RandomUser::search(QRandomGenerator &random)
{
    m_counter.click(chance(random, 60) ? "Command8" : "Command21");
}

void RandomUser::undoPurchase(QRandomGenerator &random)
{
    if (chance(random, 50))
        return m_counter.click("Command25");
    const auto *list = m_counter.find<PickList>("Combo17");
    if (list->count() > 0 && list->isVisible() && chance(random, 60))
        m_counter.pick("Combo17", random.bounded(list->count()));
    else
        m_counter.setText("Combo17", chance(random, 60) ? u"HV%1"_s.arg(random.bounded(20)) : randomText(random));
    m_counter.click("Command4");
}

void RandomUser::changeCategories(QRandomGenerator &random)
{
    auto *list = m_counter.find<QListWidget>("List2");
    constexpr std::array buttons{"Command2", "Command22", "Command3"};
    m_counter.setText("Combo16", randomText(random).left(50));
    if (list->count() > 0)
        list->setCurrentRow(random.bounded(-1, list->count()));
    m_counter.click(oneOf(buttons, random));
}

void RandomUser::pressKeypad(QRandomGenerator &random)
{
    if (chance(random, 20))
        return m_counter.click("Command31");
    m_counter.click(qPrintable(u"Command30_%1"_s.arg(random.bounded(12))));
}

void RandomUser::openForeignWindow(QRandomGenerator &random)
{
    if (chance(random, 50))
        m_counter.click("Command19");
    else
        QTest::mouseClick(m_counter.find("Label6_9"), Qt::LeftButton);
}

} // namespace harrowby::test
