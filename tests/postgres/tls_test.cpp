// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"
#include "tests/doubles/private_cluster.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

using harrowby::test::PrivateCluster;
using Kind = PgError::Kind;

/// A shop's server with a certificate of the shop's own, as tills of that shop and others meet it.
class TlsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theShopsServerIsTrusted();
    void another_data();
    void another();

private:
    void make(const QString &arguments);
    void putOnServer(const QString &file);
    [[nodiscard]] PgTarget target(const QByteArray &host, const QByteArray &authority) const;

    QTemporaryDir m_folder;
    std::unique_ptr<PrivateCluster> m_cluster;
};

void TlsTest::make(const QString &arguments)
{
    QProcess openssl;
    openssl.setWorkingDirectory(m_folder.path());
    openssl.start(u"openssl"_s, arguments.split(u' '));
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        qFatal("openssl: %s", openssl.readAllStandardError().constData());
}

/// In its data folder, for its own user alone.
void TlsTest::putOnServer(const QString &file)
{
    QFile made(m_folder.filePath(file));
    QVERIFY(made.open(QIODevice::ReadOnly));
    m_cluster->sql(u"copy (select unnest(string_to_array('%1', E'\\n'))) to program 'umask 077; cat > %2'"_s.arg(
        QString::fromLatin1(made.readAll().trimmed()), file));
}

PgTarget TlsTest::target(const QByteArray &host, const QByteArray &authority) const
{
    PgTarget target{"user=postgres dbname=shop sslmode=verify-full host=" + host +
                    " port=" + QByteArray::number(m_cluster->port()) +
                    " sslrootcert=" + m_folder.filePath(QString::fromLatin1(authority)).toUtf8()};
    target.resolver = [](const QByteArray &) { return PgAddresses{{"127.0.0.1"}, {}}; };
    return target;
}

void TlsTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    if (QStandardPaths::findExecutable(u"openssl"_s).isEmpty())
        QSKIP("openssl is not installed");
    const QString key = u" -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj "_s;
    for (const QString &authority : {u"shop"_s, u"other"_s})
        make(u"req -x509 -days 2 -out %1.crt -keyout %1.key"_s.arg(authority) + key + u"/CN="_s + authority);
    make(u"req -out server.csr -keyout server.key"_s + key + u"/CN=till1.shop"_s);
    make(u"x509 -req -days 2 -in server.csr -CA shop.crt -CAkey shop.key -CAcreateserial -out server.crt"_s);
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
    putOnServer(u"server.key"_s);
    putOnServer(u"server.crt"_s);
    m_cluster->set(u"ssl"_s, u"on"_s);
    m_cluster->setAccess({u"local all postgres trust"_s, u"hostssl all all 127.0.0.1/32 trust"_s});
}

void TlsTest::theShopsServerIsTrusted()
{
    PgSession session;
    const Result<void, PgError> connected = session.connect(target("till1.shop", "shop.crt"), {});
    QVERIFY2(connected, connected ? "" : qPrintable(connected.error().text));
    const Result<PgResults, PgError> results = session.run("select ssl from pg_stat_ssl where pid = pg_backend_pid()");
    QVERIFY(results);
    QVERIFY(results->front().isTrue(0, 0));

    // And its rows come through it, and can be given up.
    {
        Result<PgRows, PgError> rows = session.walk("select repeat('x', 1000), generate_series(1, 10000000)");
        QVERIFY(rows);
        for (int i = 0; i < 5000; ++i)
            QCOMPARE(rows->next(), PgRows::Step::Row);
    }
    QVERIFY(session.run("select 1"));
}

void TlsTest::another_data()
{
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<QByteArray>("authority");
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("machine") << QByteArray("till2.shop") << QByteArray("shop.crt") << QByteArray() << Kind::NotTrusted;
    QTest::newRow("shop") << QByteArray("till1.shop") << QByteArray("other.crt") << QByteArray() << Kind::NotTrusted;
    QTest::newRow("nobody's") << QByteArray("till1.shop") << QByteArray("none.crt") << QByteArray() << Kind::NotTrusted;
    QTest::newRow("way") << QByteArray("till1.shop") << QByteArray("shop.crt") << QByteArray(" sslmode=disable")
                         << Kind::Denied;
}

void TlsTest::another()
{
    QFETCH(QByteArray, host);
    QFETCH(QByteArray, authority);
    QFETCH(QByteArray, mode);
    PgTarget wanted = target(host, authority);
    wanted.conninfo += mode;
    PgSession session;
    const Result<void, PgError> connected = session.connect(wanted, {});
    QVERIFY(!connected);
    QTEST(connected.error().kind, "kind");
    QVERIFY2(connected.error().text.startsWith(QString::fromLatin1(host)), qPrintable(connected.error().text));
}

HARROWBY_CORE_TEST(tls_test, TlsTest)
#include "tls_test.moc"
