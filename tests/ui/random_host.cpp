// SPDX-License-Identifier: MIT
#include "tests/ui/random_host.h"

#include "app/codes/code_finder.h"
#include "app/codes/gtin.h"
#include "app/hold/held_carts.h"
#include "app/search/finding_connection.h"
#include "app/search/search_choice.h"
#include "tests/input/keyboard.h"
#include "tests/ui/counter_guest.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTimer>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

constexpr int knownItems = 30;
constexpr int mostSteps = 6; ///< in one dialog
constexpr const char *isLeft = "answeredByAnother";
const QString cheese = u"12345"_s; ///< stands in the codes with a price inside

harrowby::Counter &theCounter()
{
    return harrowby::Counter::instance();
}

QString keyOf(const CounterLine &line)
{
    return line.stockId + u"  |  "_s + line.name;
}

QMap<QString, double> unitsInCart()
{
    QMap<QString, double> units;
    for (const CounterLine &line : theCounter().cart())
        units[keyOf(line)] += line.quantity;
    return units;
}

template <typename Widget>
Widget *anyIn(QDialog &dialog, QRandomGenerator &random)
{
    QList<Widget *> usable;
    for (Widget *widget : dialog.findChildren<Widget *>()) {
        if (widget->isVisible() && widget->isEnabled())
            usable << widget;
    }
    return usable.isEmpty() ? nullptr : oneOf(usable, random);
}

} // namespace

RandomHost::Figures &RandomHost::Figures::operator+=(const Figures &other)
{
    sold += other.sold;
    refused += other.refused;
    held += other.held;
    recalled += other.recalled;
    paid += other.paid;
    return *this;
}

RandomHost::RandomHost(Counter &counter) :
    m_counter(counter), m_records(counter.file.handle(), m_book, WatchedRecords::Place::AtTheCounter),
    m_office(counter.file.path()), m_others(m_office.handle(), m_book, WatchedRecords::Place::Elsewhere)
{
    m_office.run(u"PRAGMA synchronous = OFF"_s);
    fillTables();
    counter.connection = std::make_shared<RecordingConnection>(std::make_shared<app::FindingConnection>(
        counter.file.handle(), QString(),
        [choice = app::SearchChoice(m_records, true)] { return choice.findsAnywhere(); }));
    const app::OfficeSettings settings = {
        [](const QString &, const QString &, const QString &defaultValue) { return defaultValue; }, {}};
    // Around the program's own slot.
    connect(&theCounter(), &harrowby::Counter::codeRead, this, &RandomHost::beginSale);
    m_till = std::make_unique<app::Till>(theCounter(), m_records, settings, [this] { ++m_figures.refused; });
    connect(&theCounter(), &harrowby::Counter::codeRead, this, &RandomHost::endSale);
    qApp->installEventFilter(this);
}

RandomHost::~RandomHost() = default;

void RandomHost::fillTables()
{
    for (const app::RecordTable &table : {app::kept::code(), app::kept::held(), app::kept::setting()})
        m_counter.file.sql(table.making.join(u';'));
    m_counter.file.sql(u"INSERT INTO HarrowbySetting VALUES ('InStoreCode.21', '21IIIIIPPPPPC 2')"_s);
    m_counter.file.addItem(cheese, u"CHEESE"_s, 9.99, 40);
    for (int item = 0; item < knownItems; ++item)
        m_counter.file.sql(u"INSERT INTO HarrowbyCode VALUES ('CODE%1', 'A%1', 1), ('CASE%1', 'A%1', 12)"_s.arg(item));
    m_counter.file.sql(u"INSERT INTO HarrowbyCode VALUES ('4006381333931', 'A1', 1), ('036000291452', 'A2', 3), "
                       "('it''s', 'A3', 1), ('100%', 'A4', 1), ('****', 'A5', 1), ('GONE', 'NOBODY', 1)"_s);
    m_codes = m_counter.file.rows(u"SELECT Code, Units FROM HarrowbyCode ORDER BY Code"_s);
}

void RandomHost::watch(std::function<void(QRandomGenerator &)> meanwhile, quint32 seed)
{
    m_meanwhile = std::move(meanwhile);
    m_boxSeeds.seed(seed);
}

QString RandomHost::randomCode(QRandomGenerator &random) const
{
    const QString number = QString::number(random.bounded(knownItems));
    const std::array known{u"A"_s + number,     u"CODE"_s + number, u"CASE"_s + number, u"4006381333931"_s,
                           u"04006381333931"_s, u"036000291452"_s,  u"2112345019994"_s};
    const std::array odd{u"it's"_s,          u"100%"_s, u"****"_s, u"GONE"_s,       u"' or '1'='1"_s,  u"????"_s,
                         u"2112345019995"_s, u"%%%%"_s, u"AB"_s,   u"\u202eA1A1"_s, u"5901234123457"_s};
    return chance(random, 75) ? oneOf(known, random) : chance(random, 80) ? oneOf(odd, random) : randomText(random);
}

/// Mostly as a reader that types, at times as one that is named by its device, whose code has no limit.
void RandomHost::scan(QRandomGenerator &random)
{
    const QString code = randomCode(random);
    if (code.size() <= 100 && chance(random, 75))
        return typeCode(code, random);
    if (theCounter().isBusy())
        return;
    Q_EMIT theCounter().codeRead(chance(random, 90) ? code : code + QChar(0) + QString(10'000, u'9'));
}

void RandomHost::typeCode(const QString &code, QRandomGenerator &random)
{
    constexpr std::array gaps{1, 5, 20, 45};
    constexpr int aPause = 1000;
    const int gap = oneOf(gaps, random);
    const QString end = chance(random, 5) ? QString() : chance(random, 70) ? u"\r"_s : u"\t"_s;
    Keyboard keyboard(m_counter.window());
    keyboard.pass(m_elapsed);
    m_elapsed += gap * static_cast<int>(code.size() + 1) + aPause;
    keyboard.type(code + end, gap);
}

void RandomHost::beginSale()
{
    ++m_saleCount;
    m_sales.push_back({unitsInCart(), m_nested, m_saleCount});
}

/// Only an item of the code's own may be in the cart that was not, or more of it.
void RandomHost::endSale(const QString &code)
{
    const Sale sale = m_sales.back();
    m_sales.pop_back();
    if (sale.nested != m_nested || sale.others != m_saleCount || !theCounter().isOpen())
        return; // something else happened meanwhile
    const Units after = unitsInCart();
    const QStringList own = itemsOf(code);
    int changed = 0;
    for (const QString &key : (sale.before.keys() + after.keys())) {
        const double more = after.value(key) - sale.before.value(key);
        if (more == 0)
            continue;
        ++changed;
        const bool isOwn =
            std::any_of(own.begin(), own.end(), [&](const QString &id) { return key.startsWith(id + u"  |  "_s); });
        if (more < 0 || !isOwn)
            m_problems << u"%1 units of %2 by the code %3"_s.arg(more).arg(key, code);
    }
    m_figures.sold += changed > 0 ? 1 : 0;
}

/// The IDs of the items that the code may sell.
QStringList RandomHost::itemsOf(const QString &code)
{
    const QString exact = code.trimmed();
    QStringList spellings = app::gtinSpellings(exact);
    spellings << exact;
    QStringList own = spellings;
    for (const app::ItemCode &entry : app::CodeTable(m_records).entries(spellings).value_or(QList<app::ItemCode>()))
        own << entry.stockId;
    if (exact.startsWith(u"21"_s + cheese))
        own << cheese;
    return own;
}

void RandomHost::press(const QString &button)
{
    if (auto *found = m_counter.window().findChild<QAbstractButton *>(button))
        QTest::mouseClick(found, Qt::LeftButton);
}

/// In one way or in two, with change or without.
void RandomHost::pay(QRandomGenerator &random)
{
    const auto sum = m_till->payments().sum();
    if (!sum)
        return;
    const app::Cents byCard = chance(random, 50) ? *sum / 2 : chance(random, 50) ? 0 : *sum;
    const app::Cents cash = *sum - byCard;
    QList<app::PaymentPart> parts;
    if (byCard != 0)
        parts << app::PaymentPart{app::cardWay(), byCard, byCard};
    if (cash != 0 || parts.isEmpty())
        parts << app::PaymentPart{app::cashWay(), cash, cash + app::Cents{500} * random.bounded(3)};
    if (m_till->payments().pay(parts) == CounterAnswer::Done)
        ++m_figures.paid;
}

void RandomHost::useAnotherTill(QRandomGenerator &random)
{
    app::HeldCarts carts(m_others);
    const auto all = carts.list();
    if (chance(random, 20)) {
        app::SearchChoice search(m_others, true);
        (void)search.change(search.findsAnywhere(), chance(random, 50),
                            app::SignedDeeds(m_others, app::officePlace, u"ANNA"_s));
    } else if (chance(random, 50) || !all || all->isEmpty()) {
        const int item = random.bounded(knownItems);
        const CounterLine line{u"A%1"_s.arg(item), u"ITEM %1"_s.arg(10 + item), 1.0 + random.bounded(3), 4.5,
                               chance(random, 30)};
        const QString word =
            app::heldWord(chance(random, 80) ? QString::number(random.bounded(9)) : randomText(random));
        (void)carts.hold(
            {word.isEmpty() ? u"X"_s : word, u"JANE"_s, {line, {u"A1"_s, u"ITEM 11"_s, 1, 1.5, false}}, 6});
    } else {
        (void)carts.take(oneOf(*all, random), [&](const std::vector<CounterLine> &) { return chance(random, 80); });
    }
}

void RandomHost::look(int nested)
{
    const int before = std::exchange(m_nested, nested);
    const auto held = m_records.takePutAside();
    if (!held || before != nested)
        return;
    const QStringList lines = lineTexts(m_book.carts.value(*held));
    if (!lines.isEmpty() && lineTexts(theCounter().cart()) == lines)
        m_problems << u"held, and still in the cart: "_s + lines.join(u", ");
}

QStringList RandomHost::problems()
{
    QStringList all = std::exchange(m_problems, {}) + std::exchange(m_book.problems, {});
    QStringList held;
    for (auto cart = m_book.carts.cbegin(); cart != m_book.carts.cend(); ++cart)
        held << u"%1|%2"_s.arg(cart.key()).arg(cart.value().size());
    // Where another program keeps the file locked, the next look sees it.
    const QStringList inFile = m_office.rows(u"SELECT HeldID, (SELECT count(*) FROM HarrowbyHeldLine AS l WHERE "
                                             "l.HeldID = h.HeldID) FROM HarrowbyHeld AS h ORDER BY HeldID"_s);
    const QStringList codes = m_office.rows(u"SELECT Code, Units FROM HarrowbyCode ORDER BY Code"_s);
    if (inFile != QStringList{u"(failed)"_s} && inFile != held)
        all << u"held in the file: %1; it must be %2"_s.arg(inFile.join(u", "), held.join(u", "));
    if (codes != QStringList{u"(failed)"_s} && codes != m_codes)
        all << u"codes in the file: "_s + codes.join(u", ");
    return all;
}

QStringList RandomHost::problemsOfTheDay()
{
    // What could not be written under a lock is written with the next of its kind.
    Q_EMIT theCounter().purchaseDeleted(u"nothing"_s);
    return problems() + m_paid.problems(m_office);
}

RandomHost::Figures RandomHost::figures() const
{
    Figures figures = m_figures;
    figures.held = m_book.held;
    figures.recalled = m_book.recalled;
    return figures;
}

void RandomHost::leave(QDialog &dialog)
{
    dialog.setProperty(isLeft, true);
}

/// A dialog of the program's own is met when it is shown.
bool RandomHost::eventFilter(QObject *watched, QEvent *event)
{
    auto *dialog = event->type() == QEvent::Show ? qobject_cast<QDialog *>(watched) : nullptr;
    const bool isOwn = dialog != nullptr && dialog->metaObject() != &QDialog::staticMetaObject &&
                       !dialog->property(isLeft).toBool() && dialog->isModal();
    if (isOwn && m_meanwhile) {
        leave(*dialog);
        const quint32 seed = m_boxSeeds.generate();
        if (QRandomGenerator random(seed); chance(random, 10))
            m_meanwhile(random);
        QTimer::singleShot(0, dialog, [this, dialog, seed] { use(*dialog, seed, 0); });
    }
    return QObject::eventFilter(watched, event);
}

void RandomHost::use(QDialog &dialog, quint32 seed, int step)
{
    if (!dialog.isVisible())
        return;
    if (step == mostSteps)
        return dialog.reject();
    // Before: a button may show the next box, and return when that is closed.
    QRandomGenerator random(seed);
    QTimer::singleShot(0, &dialog, [this, &dialog, next = random.generate(), step] { use(dialog, next, step + 1); });
    useOnce(dialog, random);
}

void RandomHost::useOnce(QDialog &dialog, QRandomGenerator &random)
{
    if (auto *entry = anyIn<QLineEdit>(dialog, random); entry != nullptr && chance(random, 35))
        return entry->setText(chance(random, 80) ? QString::number(random.bounded(9)) : randomText(random));
    if (auto *list = anyIn<QAbstractItemView>(dialog, random); list != nullptr && chance(random, 35)) {
        const int rows = list->model()->rowCount();
        return list->setCurrentIndex(list->model()->index(random.bounded(std::max(rows, 1)), 0));
    }
    if (auto *button = anyIn<QAbstractButton>(dialog, random))
        button->click();
}

} // namespace harrowby::test
