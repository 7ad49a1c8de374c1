// SPDX-License-Identifier: MIT
#include "tests/doubles/server_shop.h"

#include "tests/doubles/private_cluster.h"

#include <QDir>
#include <QFile>

#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

/// Functions of SQLite that tests ask with.
constexpr auto sqliteFunctions = R"(
CREATE SCHEMA sqlite;
CREATE FUNCTION sqlite.quote(value text) RETURNS text LANGUAGE sql IMMUTABLE
    RETURN coalesce('''' || replace(value, '''', '''''') || '''', 'NULL');
CREATE FUNCTION sqlite.quote(value float8) RETURNS text LANGUAGE sql IMMUTABLE RETURN coalesce(value::text, 'NULL');
CREATE FUNCTION sqlite.typeof(value text) RETURNS text LANGUAGE sql IMMUTABLE
    RETURN CASE WHEN value IS NULL THEN 'null' ELSE 'text' END;
CREATE FUNCTION sqlite.typeof(value float8) RETURNS text LANGUAGE sql IMMUTABLE
    RETURN CASE WHEN value IS NULL THEN 'null' WHEN value = trunc(value) THEN 'integer' ELSE 'real' END;
CREATE FUNCTION sqlite.datetime(moment text, change text) RETURNS text LANGUAGE sql IMMUTABLE
    RETURN to_char(moment::timestamp + change::interval, 'YYYY-MM-DD HH24:MI:SS');
CREATE FUNCTION sqlite.hex(value text) RETURNS text LANGUAGE sql IMMUTABLE
    RETURN upper(encode(convert_to(value, 'UTF8'), 'hex'));
CREATE FUNCTION sqlite.hex(value bytea) RETURNS text LANGUAGE sql IMMUTABLE RETURN upper(encode(value, 'hex'));
CREATE FUNCTION sqlite.printf(form text, number int) RETURNS text LANGUAGE sql IMMUTABLE
    RETURN lpad(number::text, substr(form, 3, 1)::int, '0'); -- '%06d'
CREATE TABLE sqlite.others AS SELECT relname FROM pg_class WHERE relnamespace = 'harrowby'::regnamespace AND
    relname NOT IN ('stocklist', 'inventorycategory', 'purchasecart', 'storesettings', 'users', 'sysusage');
CREATE VIEW sqlite.sqlite_master AS SELECT relname AS name FROM pg_class
    WHERE relnamespace = 'harrowby'::regnamespace AND relkind IN ('r', 'v') AND
    relname NOT IN (SELECT relname FROM sqlite.others);
CREATE FUNCTION sqlite.zeroblob(bytes int) RETURNS bytea LANGUAGE sql IMMUTABLE
    RETURN decode(repeat('00', bytes), 'hex');
CREATE FUNCTION sqlite.pragma_table_info(of text) RETURNS TABLE (name name) LANGUAGE sql STABLE
    BEGIN ATOMIC SELECT attname FROM pg_attribute
    WHERE attrelid = to_regclass('harrowby.' || of) AND attnum > 0 AND NOT attisdropped AND attname <> 'rowid_'
    ORDER BY attnum; END;
)"_L1;

/// Of the whole server, made with its first database.
constexpr auto roles = R"(
DO $$
DECLARE
    named text;
BEGIN
    FOREACH named IN ARRAY ARRAY['harrowby_owner', 'harrowby_till', 'harrowby_office', 'harrowby_standby'] LOOP
        IF to_regrole(named) IS NULL THEN
            EXECUTE format('CREATE ROLE %I NOLOGIN', named);
        END IF;
    END LOOP;
    IF to_regrole('till') IS NULL THEN
        CREATE ROLE till LOGIN IN ROLE harrowby_till;
    END IF;
    IF to_regrole('office') IS NULL THEN
        CREATE ROLE office LOGIN IN ROLE harrowby_office;
    END IF;
END $$;
ALTER DEFAULT PRIVILEGES IN SCHEMA harrowby GRANT ALL ON TABLES TO harrowby_till;
)"_L1;

/// What the tables are made of. A test may change that; then the database is not used again.
constexpr auto fingerprint = R"(
SELECT md5(string_agg(concat_ws(' ', attrelid, attname, attnum, atttypid, attnotnull), ',' ORDER BY attrelid, attnum)),
    (SELECT count(*) FROM pg_class), (SELECT count(*) FROM pg_trigger), (SELECT count(*) FROM pg_proc)
FROM pg_attribute WHERE attrelid >= 16384
)"_L1;

/// Everybody else leaves, within five seconds, and the tables are as they were made. The server itself would look only
/// every tenth of a second whether somebody has left. To truncate takes twenty times as long as to delete a few rows.
constexpr auto emptying = R"(
ROLLBACK;
SELECT pg_terminate_backend(pid) FROM pg_stat_activity
WHERE datname = current_database() AND pid <> pg_backend_pid() AND backend_type = 'client backend';
DO $$
BEGIN
    FOR tries IN 1..5000 LOOP
        EXIT WHEN NOT EXISTS (SELECT FROM pg_stat_activity WHERE datname = current_database() AND
            pid <> pg_backend_pid() AND backend_type = 'client backend');
        PERFORM pg_sleep(0.001), pg_stat_clear_snapshot();
    END LOOP;
END $$;
DO $$
DECLARE held regclass;
BEGIN
    FOR held IN SELECT oid FROM pg_class WHERE relnamespace = 'harrowby'::regnamespace AND relkind = 'r' AND
        relname NOT IN ('store_mark', 'writer_action') LOOP
        IF pg_relation_size(held) > 1048576 THEN
            EXECUTE format('TRUNCATE %s', held);
        ELSE
            EXECUTE format('DELETE FROM %s', held);
        END IF;
    END LOOP;
END $$;
SELECT setval(pg_get_serial_sequence(name, 'rowid_'), 1, false)
FROM unnest(ARRAY['stocklist', 'inventorycategory', 'purchasecart', 'storesettings', 'users', 'sysusage']) AS name;
)"_L1;

QString contentsOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

/// The private server of this program. A database costs a tenth of a second, so each is lent again and again.
class ShopServer
{
public:
    ShopServer();

    [[nodiscard]] LentShop lend();
    [[nodiscard]] PrivateCluster &cluster() { return m_cluster; }
    void takeBack(LentShop shop) { m_free.push_back(std::move(shop)); }

private:
    [[nodiscard]] LentShop made();
    [[nodiscard]] bool isEmptied(ServerSession &session) const;

    PrivateCluster m_cluster{{u"max_connections = 60"_s, u"autovacuum = off"_s}}; // whose locks are no till's
    std::vector<LentShop> m_free;
    QStringList m_fingerprint;
    int m_made = 0;
};

ShopServer::ShopServer()
{
    m_cluster.start();
    m_cluster.sql(u"CREATE DATABASE empty_shop"_s);
    setUpShop(m_cluster, u"empty_shop"_s);
    m_cluster.sql(sqliteFunctions, u"empty_shop"_s);
}

LentShop ShopServer::lend()
{
    while (!m_free.empty()) {
        LentShop shop = std::move(m_free.back());
        m_free.pop_back();
        if (isEmptied(*shop.session))
            return shop;
        m_cluster.sql(u"DROP DATABASE %1 WITH (FORCE)"_s.arg(shop.name));
    }
    return made();
}

LentShop ShopServer::made()
{
    const QString name = u"shop_%1"_s.arg(++m_made);
    m_cluster.sql(u"CREATE DATABASE %1 TEMPLATE empty_shop STRATEGY FILE_COPY"_s.arg(name));
    const QString path = u"postgresql://postgres@127.0.0.1:%1/%2"_s.arg(m_cluster.port()).arg(name);
    LentShop shop{name, path, std::make_unique<ServerSession>(path)};
    m_fingerprint = shop.session->rows(fingerprint).value_or(QStringList());
    return shop;
}

bool ShopServer::isEmptied(ServerSession &session) const
{
    return session.run(emptying) && session.rows(fingerprint) == m_fingerprint;
}

ShopServer &shopServer()
{
    static ShopServer server;
    return server;
}

} // namespace

bool shopsAreOnAServer()
{
    return qEnvironmentVariableIsSet("HARROWBY_TEST_SERVER");
}

bool isOnServer(const QString &path)
{
    return path.startsWith(u"postgresql:"_s);
}

void setUpShop(PrivateCluster &cluster, const QString &database)
{
    const QDir schema(QStringLiteral(HARROWBY_SCHEMA));
    for (const QString &name : schema.entryList({u"*.sql"_s}, QDir::Files, QDir::Name))
        cluster.sql(contentsOf(schema.filePath(name)), database);
    cluster.sql(u"set search_path = harrowby, pg_catalog;"_s + contentsOf(QStringLiteral(HARROWBY_OWN_TABLES)) +
                    u"reset search_path"_s,
                database);
    cluster.sql(roles, database);
    QString rights = contentsOf(QStringLiteral(HARROWBY_RIGHTS));
    cluster.sql(rights.replace(u"on database harrowby "_s, u"on database %1 "_s.arg(database)), database);
}

PrivateCluster &serverOfShops()
{
    return shopServer().cluster();
}

ServerShop::ServerShop() : m_shop(shopServer().lend()) {}

ServerShop::~ServerShop()
{
    shopServer().takeBack(std::move(m_shop));
}

} // namespace harrowby::test
