// SPDX-License-Identifier: MIT
#include "tests/app/troubled_till.h"

#include "app/shop/store_create.h"
#include "app/shop/store_open.h"
#include "platform/failure_telling.h"
#include "platform/native_printers.h"
#include "store/inv_basic.h"

#include <harrowby/sqlite_connection.h>

#include <QAbstractButton>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QTest>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

using harrowby::test::FrozenClock;
using harrowby::test::RecordingConnection;

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

std::optional<SqlError> fillShop(sqlite3 *database)
{
    if (auto error = addAdministrator(database, u"PASS"_s))
        return error;
    if (auto error = runSql(database, u"INSERT INTO InventoryCategory VALUES ('TEA', '')"_s))
        return error;
    for (const char *item : {"A1", "A2", "A3"}) {
        const QString id = QString::fromLatin1(item);
        if (auto error = runSql(database,
                                u"INSERT INTO StockList VALUES (?1, ?2, 'TEA', 1.25, 2, 100000, 'Enabled', "
                                "'', '', '', '')"_s,
                                {id, u"NAME OF "_s + id}))
            return error;
    }
    return runSql(database, u"INSERT INTO StoreSettings VALUES (0, 0, '', 0, 0)"_s);
}

} // namespace

TroubledTill::TroubledTill() :
    m_path(m_home.path(u".local/share/Harrowby/store.sqlite"_s)),
    m_log(m_home.path(u".local/share/Harrowby/harrowby.log"_s)), m_routing(m_log, false)
{
    makeStore();
    auto database = openStore(m_path, m_wait);
    if (!database)
        qFatal("%s", qPrintable(database.error().text));
    m_guard = std::make_unique<StoreGuard>(*std::move(database), m_path, m_wait);
    m_store = std::make_unique<harrowby::test::Database>(m_path);
    m_expected = std::make_unique<harrowby::test::Database>(u":memory:"_s);
    m_expected->copy(*m_store);
    IniSettings settings;
    settings.save(u"Other"_s, u"Kept"_s, u"kept"_s);
    settings.save(u"Option"_s, u"UsePOSforReceipt"_s, u"1"_s);
    settings.save(u"POS"_s, u"COM"_s, NativePrinters::filePrinterName());
    connectAll();
    m_window = std::make_unique<Inventory>(Platform{std::make_shared<Consent>(), std::make_shared<IniSettings>(),
                                                    std::make_shared<NativePrinters>(m_clock), m_clock,
                                                    std::make_shared<ObjectRegistry>()});
    m_window->load();
    controls().Text3->setText(u"ADMINISTRATOR"_s);
    controls().Text4->setText(u"PASS"_s);
    click("Command28");
}

TroubledTill::~TroubledTill()
{
    m_window.reset();
    InvBasic::setConnection(nullptr);
    FailureTelling::setHandler({});
}

void TroubledTill::makeStore() const
{
    if (const auto problem = createStore(m_path, true, fillShop))
        qFatal("%s", qPrintable(problem->text));
}

void TroubledTill::connectAll()
{
    const auto engine = std::make_shared<SqliteConnection>(m_guard->database());
    m_connection = std::make_shared<RecordingConnection>(engine);
    const auto tell = [this](const DbFailure &failure) {
        told << failure.statement + u": "_s + failure.reason;
        toldOfStatements << failure.statement;
    };
    engine->setFailureHandler(tell);
    m_connection->setFailureHandler(tell);
    m_connection->afterWrite = [this](const QString &statement, bool done) {
        (done ? m_done : failedStatements) << statement;
    };
    FailureTelling::setHandler([this](const FileFailure &failure) {
        if (failure.isOver)
            return;
        told << failure.path + u": "_s + failure.reason;
        toldOfFiles.insert(failure.kind);
    });
    m_log.setHandler([this](const Result<void, QString> &written) { hasLogTrouble = !written; });
    InvBasic::setConnection(m_connection);
}

void TroubledTill::click(const char *button) const
{
    m_window->findChild<QAbstractButton *>(QString::fromLatin1(button))->click();
}

void TroubledTill::fillCart()
{
    m_clock->time = m_clock->time.addSecs(1);
    click("Command13");
    click("Command1_0");
    click("Command1_1");
}

void TroubledTill::sell()
{
    fillCart();
    click("Command14");
}

QString TroubledTill::iniValue(const QString &key) const
{
    return IniSettings().get(key.section(u'/', 0, 0), key.section(u'/', 1), u"(none)"_s);
}

int TroubledTill::receipts() const
{
    int whole = 0;
    for (const QString &folder : {m_home.receipts(), m_home.path(u".local/share/Harrowby/Harrowby Receipts"_s)}) {
        for (const QFileInfo &entry : QDir(folder).entryInfoList({u"*.pdf"_s}, QDir::Files)) {
            QFile file(entry.filePath());
            const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            if (!bytes.startsWith("%PDF") || !bytes.trimmed().endsWith("%%EOF"))
                QTest::qFail(qPrintable(u"half a receipt: "_s + entry.filePath()), __FILE__, __LINE__);
            ++whole;
        }
    }
    return whole;
}

qint64 TroubledTill::logSize() const
{
    return QFileInfo(m_log.path()).size();
}

void TroubledTill::forget()
{
    failedStatements.clear();
    told.clear();
    toldOfStatements.clear();
    toldOfFiles.clear();
}

QString TroubledTill::differsFromWhatWasDone()
{
    for (const QString &statement : std::exchange(m_done, {})) {
        if (!m_expected->run(statement))
            return statement;
    }
    const QStringList found = m_store->everything();
    const QStringList expected = m_expected->everything();
    for (qsizetype i = 0; i < std::max(found.size(), expected.size()); ++i) {
        if (found.value(i) != expected.value(i))
            return u"found "_s + found.value(i) + u", expected "_s + expected.value(i);
    }
    return {};
}

QStringList openAndClose(sqlite3 *database)
{
    QStringList told;
    const auto connection = std::make_shared<SqliteConnection>(database);
    connection->setFailureHandler([&told](const DbFailure &failure) { told << failure.statement; });
    InvBasic::setConnection(connection);
    Inventory window({std::make_shared<Consent>(), std::make_shared<harrowby::test::MemorySettings>(),
                      std::make_shared<harrowby::test::PaperPrinters>(), std::make_shared<FrozenClock>(),
                      std::make_shared<ObjectRegistry>()});
    window.load();
    InvBasic::setConnection(nullptr);
    return told;
}

} // namespace harrowby::app::test
