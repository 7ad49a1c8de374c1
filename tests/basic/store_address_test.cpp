// SPDX-License-Identifier: MIT
#include "basic/store_address.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;

class StoreAddressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whichIsAServer_data();
    void whichIsAServer();
};

void StoreAddressTest::whichIsAServer_data()
{
    QTest::addColumn<QString>("store");
    QTest::addColumn<bool>("server");
    QTest::addColumn<QString>("words");
    const auto file = [](const char *name, const QString &store) { QTest::newRow(name) << store << false << store; };
    const auto target = [](const char *name, const QString &store, const QString &words = {}) {
        QTest::newRow(name) << store << true << (words.isEmpty() ? store : words);
    };
    file("path", u"/home/shop/store.sqlite"_s);
    file("nothing", u""_s);
    file("folder called so", u"/srv/postgresql://x"_s);
    file("file called so", u"/home/shop/service=harrowby"_s);
    file("another word", u"myservice=harrowby"_s);
    target("service", u"service=harrowby"_s);
    target("service and more", u" service = harrowby host=a"_s, u"service = harrowby host=a"_s);
    target("host", u"host=10.0.0.5 dbname=harrowby"_s);
    target("URI", u"postgresql://10.0.0.5/harrowby"_s);
    target("short URI", u"postgres:///harrowby"_s);
    target("two hosts", u"postgresql://till_1@a:5432,b:5433/harrowby?sslmode=verify-full"_s);
    target("password in a URI", u"postgresql://till_1:secret@a:5432/harrowby"_s,
           u"postgresql://till_1@a:5432/harrowby"_s);
    target("odd password in a URI", u"postgresql://till_1:se@cr:et@a/harrowby"_s, u"postgresql://till_1@a/harrowby"_s);
    target("slash in a password", u"postgresql://till_1:se/cr@et@a:5432/harrowby"_s,
           u"postgresql://till_1@a:5432/harrowby"_s);
    target("question mark in a password", u"postgresql://till_1:se?cret@a/harrowby"_s,
           u"postgresql://till_1@a/harrowby"_s);
    target("hosts and a name with a sign", u"postgresql://a:5432,b/harrowby?application_name=x@y"_s);
    target("host in numbers", u"postgresql://[::1]:5432/harrowby?application_name=x@y"_s);
    target("password alone in a URI", u"postgresql://:secret@a/harrowby"_s, u"postgresql://@a/harrowby"_s);
    target("URI of a host alone", u"postgresql://a:5432"_s);
    target("password of a host alone", u"postgresql://u:secret@a"_s, u"postgresql://u@a"_s);
    target("password as a parameter", u"postgresql://a/shop?password=secret"_s, u"postgresql://a/shop"_s);
    target("first of the parameters", u"postgresql://a/shop?password=secret&sslmode=require"_s,
           u"postgresql://a/shop?sslmode=require"_s);
    target("last of the parameters", u"postgresql://a/shop?sslmode=require&sslpassword=secret"_s,
           u"postgresql://a/shop?sslmode=require"_s);
    target("password", u"service=harrowby password=secret host=a"_s, u"service=harrowby host=a"_s);
    target("password in quotes", u"service=harrowby password = 'sec \\'ret' host=a"_s, u"service=harrowby host=a"_s);
    target("password with a blank", u"service=harrowby password=sec\\ ret"_s, u"service=harrowby"_s);
    target("open quotes", u"service=harrowby password='sec ret"_s, u"service=harrowby"_s);
    target("password file", u"service=harrowby passfile=/etc/harrowby/pass"_s);
}

void StoreAddressTest::whichIsAServer()
{
    QFETCH(QString, store);
    QFETCH(bool, server);
    QFETCH(QString, words);
    QCOMPARE(isServer(store), server);
    QCOMPARE(storeWords(store), words);
}

HARROWBY_CORE_TEST(store_address_test, StoreAddressTest)
#include "store_address_test.moc"
