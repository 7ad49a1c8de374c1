// SPDX-License-Identifier: MIT
#include "tests/support/till.h"

#include "store/inv_basic.h"
#include "tests/doubles/server_shop.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <harrowby/sqlite_connection.h>

#include <QAbstractButton>
#include <QLineEdit>
#include <QListWidget>

#include <sqlite3.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

constexpr int lockWaitMs = 20000;

std::shared_ptr<MemorySettings> quietSettings()
{
    auto settings = std::make_shared<MemorySettings>();
    settings->save(u"Option"_s, u"UsePOSforReceipt"_s, u"0"_s);
    return settings;
}

/// Answers Yes without showing a box.
class Consent final : public Boxes
{
public:
    Answer message(QWidget *, const QString &, int style, const QString &) override
    {
        return (style & box::YesNo) != 0 ? Answer::Yes : Answer::Ok;
    }
    QString input(QWidget *, const QString &, const QString &, const QString &) override { return {}; }
};

} // namespace

Till::Till(const QString &path, Pace pace) : m_database(std::make_unique<Database>(path))
{
    if (isOnServer(path)) {
        open(connectToServer(path, {}), pace);
        return;
    }
    sqlite3_busy_timeout(m_database->handle(), lockWaitMs);
    m_database->run(u"PRAGMA journal_mode = WAL; PRAGMA synchronous = "_s +
                    (pace == Pace::Shop ? u"FULL"_s : u"OFF"_s));
    open(std::make_shared<SqliteConnection>(m_database->handle()), pace);
}

Till::Till(sqlite3 *database)
{
    open(std::make_shared<SqliteConnection>(database), Pace::Shop);
}

void Till::open(const std::shared_ptr<DbConnection> &store, Pace pace)
{
    m_store = store;
    m_connection = std::make_shared<RecordingConnection>(store);
    std::shared_ptr<Boxes> boxes = std::make_shared<Consent>();
    if (pace == Pace::Shop) {
        const auto real = std::make_shared<QtBoxes>();
        m_answers = std::make_unique<BoxQueue>(*real);
        m_answers->answerTheRest([](const QString &) { return Answer::Yes; });
        boxes = real;
    }
    InvBasic::setConnection(m_connection);
    m_window = std::make_unique<Inventory>(Platform{boxes, quietSettings(), std::make_shared<PaperPrinters>(), m_clock,
                                                    std::make_shared<ObjectRegistry>()});
    m_window->load();
    m_window->show();
}

Till::~Till()
{
    m_window.reset();
    InvBasic::setConnection(nullptr);
}

void Till::reportStatements(const std::function<bool(const QString &)> &isLeft)
{
    m_connection->beforeWrite = [isLeft](const QString &statement) {
        if (!isLeft || !isLeft({}))
            say(u"B "_s + statement);
    };
    m_connection->afterWrite = [isLeft, store = m_store](const QString &statement, bool done) {
        if (isLeft && done && isLeft(statement))
            return;
        const QString failed = store->lastWrite() == WriteOutcome::Unknown ? u"AU "_s : u"A0 "_s;
        say((done ? u"A1 "_s : failed) + statement);
    };
}

void Till::followFailures(const std::function<void(const DbFailure &, WriteOutcome)> &follow)
{
    m_store->setFailureHandler(
        [follow, store = m_store.get()](const DbFailure &failure) { follow(failure, store->lastWrite()); });
}

void Till::logIn(const QString &name, const QString &password)
{
    m_window->controls().Text3->setText(name);
    m_window->controls().Text4->setText(password);
    click(u"Command28"_s);
}

void Till::sell(QRandomGenerator &random)
{
    for (int units = random.bounded(1, 7); units > 0; --units)
        click(u"Command1_%1"_s.arg(random.bounded(9)));
    purchase();
}

void Till::purchase()
{
    purchaseAtOnce();
    m_clock->time = m_clock->time.addSecs(1);
}

void Till::choose(int button) const
{
    click(u"Command1_%1"_s.arg(button));
}

bool Till::hasCart() const
{
    return m_window->controls().LV3->rows().rowCount() > 0;
}

void Till::purchaseAtOnce() const
{
    click(u"Command14"_s);
}

void Till::reorder(const QString &key, int units) const
{
    m_window->controls().Combo11->setEntryText(key);
    m_window->controls().Combo10->setEntryText(QString::number(units));
    click(u"Command17"_s);
}

void Till::saveItem(const QString &id, const QString &category, int figure) const
{
    const Controls &controls = m_window->controls();
    const QString number = QString::number(figure);
    controls.Combo6->setEntryText(id);
    controls.Combo5->setEntryText(category);
    controls.Combo7->setEntryText(u"NAME OF "_s + id);
    for (PickList *field : {controls.Combo8, controls.Combo13, controls.Combo14})
        field->setEntryText(number);
    controls.Combo15->setEntryText(u"Enabled"_s);
    click(u"Command16"_s);
}

void Till::addCategory(const QString &name) const
{
    m_window->controls().Combo16->setEntryText(name);
    click(u"Command2"_s);
}

void Till::deleteCategory() const
{
    QListWidget &list = *m_window->controls().List2;
    list.setCurrentRow(list.count() - 1);
    click(u"Command3"_s);
}

void Till::click(const QString &name) const
{
    m_window->findChild<QAbstractButton *>(name)->click();
}

void say(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    if (::write(STDOUT_FILENO, bytes.constData(), static_cast<std::size_t>(bytes.size())) != bytes.size())
        ::_exit(1); // the reading process has ended
}

void TillReport::read(const QByteArray &lines)
{
    // A line without its end was cut off by the kill and does not count.
    for (const QByteArray &bytes : lines.first(lines.lastIndexOf('\n') + 1).split('\n')) {
        const QString line = QString::fromUtf8(bytes);
        if (line.startsWith(u"B "_s)) {
            underWay = line.sliced(2);
        } else if (line.startsWith(u"A1 "_s) || line.startsWith(u"A0 "_s) || line.startsWith(u"AU "_s)) {
            (line.at(1) == u'1' ? done : failed) << line.sliced(3);
            underWay.clear();
        } else if (!line.isEmpty()) {
            messages << line;
        }
    }
}

} // namespace harrowby::test
