// SPDX-License-Identifier: MIT
#pragma once

#include "tests/doubles/recording_connection.h"
#include "tests/doubles/shop_file.h"
#include "tests/support/box_queue.h"
#include "tests/support/doubles.h"
#include "ui/inventory.h"
#include "ui/work_areas.h"

#include <harrowby/sqlite_connection.h>

#include <QTest>
#include <QWidget>

#include <memory>

namespace harrowby::test {

/// The real window on a real file, with everything outside the database at a test's command. Boxes are the real ones,
/// answered through one queue; a wrong, missing or left-over one fails the test at the end. Receipts, boxes that report
/// outcomes and the other settings are off, and nobody is logged in; the user ADMINISTRATOR has the password PASS.
class Counter
{
public:
    Counter();
    ~Counter();
    Counter(const Counter &) = delete;
    Counter &operator=(const Counter &) = delete;

    ShopFile file;
    std::shared_ptr<RecordingConnection> connection;
    std::shared_ptr<QtBoxes> qtBoxes = std::make_shared<QtBoxes>();
    BoxQueue boxes{*qtBoxes};
    std::shared_ptr<Boxes> windowBoxes = qtBoxes; ///< what the window shows its boxes through
    std::shared_ptr<FrozenClock> clock = std::make_shared<FrozenClock>();
    std::shared_ptr<MemorySettings> settings = std::make_shared<MemorySettings>();
    std::shared_ptr<PaperPrinters> printers = std::make_shared<PaperPrinters>();
    std::shared_ptr<ObjectRegistry> objects = std::make_shared<ObjectRegistry>();

    /// Builds, loads and shows the window.
    void open();
    /// Closes it, answering Yes, and waits until it is gone.
    void close();
    [[nodiscard]] Inventory &window() const { return *m_window; }
    [[nodiscard]] const FormState &state() const { return m_window->state(); }
    [[nodiscard]] bool isOpen() const { return !m_window.isNull(); }

    /// A control by its name; a missing one ends the test program with the names there are.
    template <typename T = QWidget>
    [[nodiscard]] T *find(const char *name) const
    {
        T *found = qobject_cast<T *>(control(name));
        if (found == nullptr)
            qFatal("%s is of another type", name);
        return found;
    }
    /// text() of a label, button or line edit, entryText() of a pick list.
    [[nodiscard]] QString text(const char *name) const;
    void setText(const char *name, const QString &text) const;
    void click(const char *name) const;
    /// Picks an entry of a pick list (0-based) as a user does, from the list that drops down.
    void pick(const char *name, int entry) const;
    [[nodiscard]] QStringList entries(const char *name) const;
    /// Whether the window's keyboard focus is there (whether or not the window is the active one).
    [[nodiscard]] bool hasFocus(const char *name) const;
    /// Chooses a tab as a user does, by the mouse: a WorkArea of "TabStrip1", a SidePanel of "TabStrip2".
    void chooseTab(const char *strip, int number) const;
    [[nodiscard]] int selectedTab(const char *strip) const;
    /// Types a name and a password and presses "&Login!".
    void logIn(const QString &name = QStringLiteral("ADMINISTRATOR"), const QString &password = QStringLiteral("PASS"));

    /// Lines of the cart, columns joined by "|".
    [[nodiscard]] QStringList cart() const { return rows("LV3"); }
    /// Rows of a list, columns joined by "|".
    [[nodiscard]] QStringList rows(const char *name) const;

private:
    [[nodiscard]] QWidget *control(const char *name) const;
    QPointer<Inventory> m_window;
};

} // namespace harrowby::test
