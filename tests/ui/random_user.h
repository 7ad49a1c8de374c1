// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/database.h"
#include "tests/support/counter.h"
#include "tests/ui/random_choice.h"
#include "tests/ui/random_host.h"
#include "tests/ui/random_windows.h"

#include <QObject>
#include <QRandomGenerator>
#include <QStringList>

#include <functional>
#include <vector>

class QDialog;
class QInputDialog;
class QMessageBox;

namespace harrowby::test {

/// Does at random anything that a user, the host or another program may do to the window; the same seed does the same.
/// Actions in the middle of others have a seed of their own: how often the window breathes depends on time, and must
/// not change the later actions.
class RandomUser : public QObject
{
    Q_OBJECT

public:
    /// `host` is null where nobody but the window stands at the counter.
    RandomUser(Counter &counter, RandomHost *host, quint32 seed);

    /// One action at an open window.
    void act();
    /// Ends what outlasts an action: a lock, an open popup.
    void calmDown();

    /// Boxes that the window does not have.
    [[nodiscard]] QStringList strangeBoxes() const { return m_strangeBoxes; }
    /// Actions that were entered in the middle of another one.
    [[nodiscard]] int nested() const { return m_nested; }
    [[nodiscard]] int boxes() const { return m_boxes; }
    /// Windows of the host's that were opened.
    [[nodiscard]] int windows() const { return m_windows.opened; }

private:
    struct Action
    {
        int weight = 1;
        const char *name = "";
        void (RandomUser::*act)(QRandomGenerator &random);
    };
    [[nodiscard]] static const std::vector<Action> &actions();
    void choose(QRandomGenerator &random);
    void tell(const char *action) const;
    void actLater(QRandomGenerator &random);
    void breathe();

    // At the window
    void logIn(QRandomGenerator &random);
    void sell(QRandomGenerator &random);
    void commit(QRandomGenerator &random);
    void clickAnything(QRandomGenerator &random);
    void typeSomewhere(QRandomGenerator &random);
    void pressKey(QRandomGenerator &random);
    void pickEntry(QRandomGenerator &random);
    void chooseTab(QRandomGenerator &random);
    void openRow(QRandomGenerator &random);
    void clickLabel(QRandomGenerator &random);
    void close(QRandomGenerator &random);
    void resize(QRandomGenerator &random);
    void interrupt(QRandomGenerator &random);

    // In the other work areas (random_office.cpp)
    void enterStock(QRandomGenerator &random);
    void reorder(QRandomGenerator &random);
    void sellByHand(QRandomGenerator &random);
    void search(QRandomGenerator &random);
    void undoPurchase(QRandomGenerator &random);
    void changeCategories(QRandomGenerator &random);
    void pressKeypad(QRandomGenerator &random);
    void openForeignWindow(QRandomGenerator &random);

    // At the store program's own (random_host.cpp)
    void scan(QRandomGenerator &random);
    void hold(QRandomGenerator &random);
    void recall(QRandomGenerator &random);
    void pay(QRandomGenerator &random);
    void useAnotherTill(QRandomGenerator &random);

    // By other programs
    void changeData(QRandomGenerator &random);
    void lock(QRandomGenerator &random);
    void printReceipts(QRandomGenerator &random);

    // Boxes
    void meet(QDialog &dialog);
    void answer(QMessageBox &message, quint32 seed);
    void answer(QInputDialog &input, quint32 seed);

    template <typename Widget>
    Widget *any(QRandomGenerator &random) const;

    Counter &m_counter;
    RandomHost *m_host;
    Database m_other;
    QRandomGenerator m_random;
    QRandomGenerator m_boxSeeds;
    HostWindows m_windows;
    QStringList m_strangeBoxes;
    bool m_tells;
    int m_depth = 0;
    int m_nested = 0;
    int m_boxes = 0;
    int m_slowStatements = 0; ///< statements that are followed by a breath
    int m_lockedFor = 0;      ///< actions
};

} // namespace harrowby::test
