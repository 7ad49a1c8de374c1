// SPDX-License-Identifier: MIT
#include "ui/dashboard/report_call.h"

#include "tests/program/test_program.h"

#include <harrowby/report_component.h>

#include <QObject>
#include <QTest>

#include <stdexcept>

using namespace harrowby;
using namespace Qt::StringLiterals;

namespace {

/// Stands for an open connection; nothing here runs a statement.
class NoConnection : public DbConnection
{
public:
    bool Execute(const QString &) override { return false; }
    std::unique_ptr<DbCursor> query(const QString &) override { return nullptr; }
    std::optional<std::int64_t> countRows(const QString &) override { return {}; }
    std::optional<std::vector<DbRowId>> rowIds(const QString &) override { return {}; }
    bool insertRow(const QString &, const DbAssignments &) override { return false; }
    bool updateRow(const QString &, DbRowId, const DbAssignments &) override { return false; }
    [[nodiscard]] QString location() const override { return {}; }
};

} // namespace

/// Records its arguments and changes all that are references.
class Report : public QObject
{
    Q_OBJECT

public:
    QString noted;
    std::shared_ptr<DbConnection> given;
    std::shared_ptr<DbConnection> left;
    bool fails = false;

public Q_SLOTS:
    void AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString &folder, bool third,
                        QString &msgTitle, bool fifth, bool mayEditStockOrReorder, bool &canSettings,
                        QString &loggedUser)
    {
        noted = u"%1 %2 '%3' %4 %5 %6 %7"_s.arg(folder)
                    .arg(third)
                    .arg(msgTitle)
                    .arg(fifth)
                    .arg(mayEditStockOrReorder)
                    .arg(canSettings)
                    .arg(loggedUser);
        given = std::exchange(connection, left);
        msgTitle = u"title"_s;
        canSettings = !canSettings;
        loggedUser = u"SOMEBODY"_s;
        if (fails)
            throw std::runtime_error("out of paper");
    }
};

class InvokableReport : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void AccountPreview(std::shared_ptr<harrowby::DbConnection> &, const QString &, bool, QString &, bool,
                                    bool, bool &canSettings, QString &)
    {
        canSettings = true;
    }
};

class ShortReport : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void AccountPreview(std::shared_ptr<harrowby::DbConnection> &, const QString &) { Q_ASSERT(false); }
};

class ValueReport : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    // NOLINTNEXTLINE(performance-unnecessary-value-param): the shape that is refused
    void AccountPreview(std::shared_ptr<harrowby::DbConnection>, const QString &, bool, const QString &, bool, bool,
                        bool, const QString &)
    {
        Q_ASSERT(false);
    }
};

class OtherNameReport : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void accountPreview(std::shared_ptr<harrowby::DbConnection> &, const QString &, bool, QString &, bool, bool, bool &,
                        QString &)
    {
        Q_ASSERT(false);
    }
};

class ReportCallTest : public QObject
{
    Q_OBJECT

private:
    QString m_title;
    bool m_canSettings = true;
    QString m_user;
    ReportArguments m_arguments;

private Q_SLOTS:
    void init()
    {
        m_title = u"t"_s;
        m_canSettings = true;
        m_user = u"ADMINISTRATOR"_s;
        m_arguments = {
            std::make_shared<NoConnection>(), u"/srv/shop"_s, true, &m_title, true, false, &m_canSettings, &m_user};
    }

    void handsOverAllEight()
    {
        Report report;
        const auto connection = m_arguments.connection;
        QVERIFY(callAccountPreview(report, m_arguments));
        QCOMPARE(report.noted, u"/srv/shop 1 't' 1 0 1 ADMINISTRATOR"_s);
        QCOMPARE(report.given, connection);
    }

    void whatGoesByReferenceIsTheCallers()
    {
        Report report;
        report.left = std::make_shared<NoConnection>();
        QVERIFY(callAccountPreview(report, m_arguments));
        QCOMPARE(m_arguments.connection, report.left);
        QCOMPARE(m_title, u"title"_s);
        QCOMPARE(m_canSettings, false);
        QCOMPARE(m_user, u"SOMEBODY"_s);
    }

    void anExceptionPassesAndWhatChangedStays()
    {
        Report report;
        report.fails = true;
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, static_cast<void>(callAccountPreview(report, m_arguments)));
        QVERIFY(!m_arguments.connection);
        QCOMPARE(m_user, u"SOMEBODY"_s);
    }

    void anInvokableServesAsWell()
    {
        InvokableReport report;
        m_canSettings = false;
        QVERIFY(callAccountPreview(report, m_arguments));
        QVERIFY(m_canSettings);
    }

    void otherArgumentsAreNoMethod_data()
    {
        QTest::addColumn<std::shared_ptr<QObject>>("report");
        QTest::newRow("none") << std::make_shared<QObject>();
        QTest::newRow("fewer") << std::shared_ptr<QObject>(std::make_shared<ShortReport>());
        QTest::newRow("by value") << std::shared_ptr<QObject>(std::make_shared<ValueReport>());
        QTest::newRow("other case") << std::shared_ptr<QObject>(std::make_shared<OtherNameReport>());
    }

    void otherArgumentsAreNoMethod()
    {
        QFETCH(const std::shared_ptr<QObject>, report);
        const auto connection = m_arguments.connection;
        QVERIFY(!callAccountPreview(*report, m_arguments));
        QCOMPARE(m_arguments.connection, connection);
        QCOMPARE(m_user, u"ADMINISTRATOR"_s);
    }

    void theDocumentedSignatureIsNormalized()
    {
        QCOMPARE(QMetaObject::normalizedSignature(AccountPreviewSignature), QByteArray(AccountPreviewSignature));
    }
};

HARROWBY_CORE_TEST(report_call_test, ReportCallTest)
#include "report_call_test.moc"
