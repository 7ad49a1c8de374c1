// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/code_reader_settings.h>
#include <harrowby/export.h>

#include <QObject>
#include <QString>

#include <optional>
#include <vector>

class QWidget;

/// The counter, for a host: what happens at it, what is on it, and what a person could press there. docs/counter.md
/// shows it in use.
namespace harrowby {

/// What the one who is logged in may do beside selling by the quick-sale buttons (docs/database.md, table Users).
struct CounterRights
{
    bool sell = false; ///< custom sales
    bool editStock = false;
    bool reorder = false;
    bool undo = false;
    bool deletePurchases = false;
    bool settings = false;
    bool report = false;
};

struct CounterUser
{
    QString name; ///< trimmed and in capitals
    CounterRights rights;
};

struct CounterLine
{
    QString stockId;         ///< its case kept
    QString name;            ///< in capitals
    double quantity = 0;     ///< units; a whole number, except after an undo of an odd purchase
    double cost = 0;         ///< of the line, not of a unit; as the cart shows it, to the cent
    bool costByHand = false; ///< changed by a person: not quantity times the item's price
};

struct CounterPurchase
{
    enum class Row {
        Written,
        NotWritten,
        NotKnown, ///< the engine failed in a way that leaves open whether the row is in the table
    };

    QString id;
    QString items; ///< PurchasedItems, as it was to be stored
    QString user;
    float total = 0; ///< PurchasedItemsCost, likewise
    std::vector<CounterLine> lines;
    Row row = Row::NotKnown;
};

/// What came of something asked of the counter.
enum class CounterAnswer {
    Done,
    NotLoggedIn,   ///< the gate's box has been shown
    NoRight,       ///< the gate's box has been shown
    Unknown,       ///< no item has exactly this ID; one with a quote (') or a NUL is never found
    Disabled,      ///< the item is not sold
    NotInCapitals, ///< its stored name has small letters, or blanks around it or its ID; such an item cannot be sold
    NotEnough,     ///< in stock; the counter's box has been shown
    Declined,      ///< a question was answered "No"
    CartEmpty,
    Busy,       ///< a box of the counter's, or another modal window of the process, is open
    NoWindow,   ///< no window, or it is closing
    Failed,     ///< a statement failed, and the connection has reported it; or the handler ended early, see the log
    WrongUnits, ///< not 1 to 32,767
};

/// A line that Counter::putCart() could not put back as it was.
struct CounterMisfit
{
    enum class Reason {
        SoldOut,   ///< nothing in stock; left out
        NotEnough, ///< put back, at the price of today, with as many units as there are beside the cart's, maybe none
        PriceChanged,  ///< put back at the price of today
        Gone,          ///< no such item, or renamed; left out
        Disabled,      ///< left out
        NotInCapitals, ///< left out
        NotRead,       ///< a statement failed; put back as it was
    };

    CounterLine line; ///< as it was given
    Reason reason = Reason::Gone;
    double quantity = 0; ///< put back of this line; 0 when it was left out
    double cost = 0;     ///< of the cart's line now, with what was in it before; 0 when this one was left out
};

/// The one counter of the process. It exists without a window too, tells then of nothing, and answers NoWindow.
///
/// Use it on the user-interface thread, after a QApplication has been made and before that is destroyed. Functions that
/// press show the same boxes as the control would, and return when those are closed. What they ask of the database goes
/// through the connection of Init::LoadInventory(). Nothing here throws.
///
/// Signals arrive through the event loop, after the handler that caused them has returned (the outermost one, where one
/// was entered while another one's list fills), in the order in which things happened; so a slot may call everything
/// here. What happened before the first call of instance() is not told. An exception out of a slot is logged and ends
/// there.
class HARROWBY_EXPORT Counter final : public QObject
{
    Q_OBJECT

public:
    [[nodiscard]] static Counter &instance();

    // What is on it
    /// From the end of the window's loading until a person has confirmed to close it.
    [[nodiscard]] bool isOpen() const;
    /// Empty while nobody is logged in.
    [[nodiscard]] std::optional<CounterUser> user() const;
    [[nodiscard]] std::vector<CounterLine> cart() const;
    /// The sum that a purchase would store now, from the cart's lines; the label may show an older one.
    [[nodiscard]] float total() const;
    /// A press would be answered with Busy.
    [[nodiscard]] bool isBusy() const;

    /// To be called before a host writes through the same database handle: reads at once what is left of the lists that
    /// fill. SQLite refuses a write (SQLITE_BUSY_SNAPSHOT) while they still read and another program has written since.
    void finishReading() noexcept;

    /// For a host that is told what became of a write (DbConnection): until purchased() has told of this purchase, its
    /// row is told as `row` where it would have been NotKnown. Of no account afterwards.
    void setKnownRow(const QString &purchaseId, CounterPurchase::Row row);

    // What a person could press
    /// As a quick-sale button of that item, with `units` (1 to 32,767) in place of one. Also while a list fills.
    CounterAnswer sell(const QString &stockId, int units = 1);
    /// As "Purchase Cart" with a cart that is not empty; nothing is reprinted. Done: the cart has been committed, and
    /// purchased() tells with what success.
    CounterAnswer purchase();
    /// Empties the cart as the "No" of a logout does, without a question; `lines` gets what was in it, and nothing when
    /// the answer is not Done.
    CounterAnswer takeCart(std::vector<CounterLine> &lines);
    /// Adds lines that were taken, with each cost that was changed by hand; the stock is checked without a box, and
    /// `misfits` gets what is not as it was. A line of an item that is in the cart already is merged into it: at the
    /// price of today, or where either cost was changed by hand, by adding the two. What is no finite number is left
    /// out as Gone. Begins no transaction and no event loop, so a host may put it within a transaction of its own.
    CounterAnswer putCart(const std::vector<CounterLine> &lines, std::vector<CounterMisfit> &misfits);

    // Places for a host's own
    /// Adds a button to the row at the top of the window, which has none of a host's before the first. It is made at
    /// least 44 px high, pressed by Enter too, and comes after the work areas' tabs in the tab order. What does not fit
    /// is scrolled by finger and by focus. The window owns it; a new window after windowOpened() starts without. False,
    /// with nothing taken, without a window.
    bool addButton(QWidget *button);
    /// Puts a widget above the cart's total, in a place of fixed height that is there from now on (44 px in a small
    /// window, 64 in a large one). Ownership as above; a second one replaces and deletes the first, null leaves the
    /// place empty.
    bool setBanner(QWidget *banner);

    // Codes
    /// From now on bursts are recognised and told by codeRead() or codeRefused(). Without settings, as at first, none
    /// is, and every key goes where it always went.
    ///
    /// A code that is read while an entry that takes text has the focus lands there, without Enter, and is not told;
    /// for entries of figures it is. Entries that hide their text are left alone. This holds in all windows of the
    /// process.
    void takeCodes(const std::optional<CodeReaderSettings> &settings);
    /// To be called from a slot of codeRead() when nobody knows the code. What was typed right behind it, within the
    /// gap, is then refused as Mixed: it may be the end of a second reader's code, and another item's.
    void codeNotKnown();

    // What a database that was gone has left
    /// To be called when the database answers again: reads what the window shows without being asked (the figures, the
    /// page of quick sales; settings and categories that it has not read yet), also while nobody is logged in. Nothing
    /// that a person has chosen or typed changes. Done, Busy or NoWindow; or Failed when it ended early. What cannot be
    /// read this time either is reported by the connection.
    CounterAnswer readAgain();

    enum class CodeRefusal {
        BoxOpen, ///< a box is open; it was not answered
        Mixed,   ///< two readers at once, or what is left of a code
        TooLong,
    };
    Q_ENUM(CodeRefusal)

Q_SIGNALS:
    void windowOpened();
    /// Also when the window was destroyed without being closed.
    void windowClosed();
    void loggedIn(const harrowby::CounterUser &user);
    void loggedOut(const QString &name);
    /// `name` as it was typed, trimmed and in capitals; it may be empty.
    void loginRefused(const QString &name);
    /// Once for a handler, however many lines it changed; and in its place before purchased() and the like.
    void cartChanged();
    /// Also the one that a logout's "Yes" makes.
    void purchased(const harrowby::CounterPurchase &purchase);
    /// Its row is gone, and so are other rows of the same ID. Nothing is told when the statement failed.
    void purchaseUndone(const QString &id);
    void purchaseDeleted(const QString &id);
    /// `oldId` is empty for a new item. Nothing is told when the row could not be written.
    void stockSaved(const QString &oldId, const QString &newId);
    /// `id` in capitals, as the list shows it: every item went whose ID is the same without regard to ASCII case.
    /// Nothing is told when the statement failed.
    void stockDeleted(const QString &id);
    void codeRead(const QString &code);
    void codeRefused(harrowby::Counter::CodeRefusal why);

private:
    Counter();
    ~Counter() override;
};

} // namespace harrowby
