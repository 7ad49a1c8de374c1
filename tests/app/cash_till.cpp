// SPDX-License-Identifier: MIT
#include "tests/app/cash_till.h"

#include "app/shop/failure_text.h"
#include "platform/boxes.h"
#include "tests/doubles/server_shop.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

QString wordsOf(const QList<PaymentPart> &parts)
{
    QStringList words;
    for (const PaymentPart &part : parts)
        words << u"%1 %2/%3"_s.arg(part.way).arg(part.amount).arg(part.given);
    return words.join(u" + "_s);
}

} // namespace

void CashTill::init()
{
    m_told.clear();
    m_failures.clear();
    m_till = std::make_unique<harrowby::test::Counter>();
    file().addItem(u"A1"_s, u"TEA"_s, 2.5, 500);
    file().addItem(u"B2"_s, u"HONEY"_s, 4, 500);
    file().addItem(u"C3"_s, u"O'HARA\"S, 1 X  |  = BREAD"_s, 1.2, 500);
    FussyShop shop = fussyShop(file());
    m_records = std::move(shop.records);
    m_fuss = shop.fuss;
    m_records->setFailureHandler([this](const DbFailure &failure) {
        if (failure.kind == DbFailure::Kind::Write) // as the notice has it
            m_failures << failedWork(failure);
    });
    startRun();
    m_till->open();
    m_till->logIn();
    takeEvents();
}

void CashTill::cleanup()
{
    m_payments.reset();
    m_locks.reset();
    m_records.reset();
    m_till.reset();
}

QString CashTill::rowPlace() const
{
    return harrowby::test::isOnServer(file().path()) ? u"ctid"_s : u"rowid"_s;
}

QString CashTill::locksPath() const
{
    return harrowby::test::isOnServer(file().path()) ? m_locksFolder.filePath(u"shop"_s) : file().path();
}

void CashTill::startRun()
{
    m_locks = std::make_shared<FileRunLocks>(locksPath());
    m_payments = std::make_unique<Payments>(
        counter(), *m_records, CashStation{u"Front"_s, m_locks, [this] { return m_till->clock->now(); }, 0});
    connect(m_payments.get(), &Payments::paid, this,
            [this](const QString &id, const QList<PaymentPart> &parts, qint64 total, qint64 change) {
                m_told << u"paid %1: %2 of %3, change %4"_s.arg(id, wordsOf(parts)).arg(total).arg(change);
            });
    connect(m_payments.get(), &Payments::givenBack, this,
            [this](const QString &id, qint64 cash, const QList<PaymentPart> &others) {
                m_told << u"back %1: %2 %3"_s.arg(id).arg(cash).arg(wordsOf(others)).trimmed();
            });
    connect(m_payments.get(), &Payments::lockMissing, this, [this] { m_told << u"no lock"_s; });
    takeEvents();
}

void CashTill::endRun()
{
    m_payments.reset();
    m_locks.reset();
}

void CashTill::killRun()
{
    // The end of the run cannot be written, nor anything else.
    m_fuss->failAll = true;
    endRun();
    m_fuss->failAll = false;
    m_failures.clear();
}

void CashTill::fillCart(const QString &id)
{
    QCOMPARE(counter().sell(id), CounterAnswer::Done);
    takeEvents();
}

void CashTill::answerQuestion(Answer answer, const std::function<void()> &meanwhile)
{
    m_till->boxes.answerTheRest([answer, meanwhile](const QString &) {
        if (meanwhile)
            meanwhile();
        return answer;
    });
}

void CashTill::purchasePlainly()
{
    fillCart();
    answerQuestion(Answer::Yes);
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    takeEvents();
}

void CashTill::payCash(Cents given, Answer answer)
{
    answerQuestion(answer);
    const Cents sum = m_payments->sum().value();
    QCOMPARE(m_payments->pay({{cashWay(), sum, given}}),
             answer == Answer::Yes ? CounterAnswer::Done : CounterAnswer::Declined);
    takeEvents();
}

void CashTill::laterBy(int seconds)
{
    m_till->clock->time = m_till->clock->time.addSecs(seconds);
}

void CashTill::takeEvents()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(); // what a start settles
}

QStringList CashTill::payments() const
{
    return file().rows(u"SELECT State, PurchaseID, Way, Amount, Given, Total, Seller, Drawer, Run, Origin "
                       "FROM HarrowbyPayment ORDER BY TakenAt, "_s +
                       rowPlace());
}

QString CashTill::onePurchase() const
{
    return file().cell(u"SELECT max(PurchaseID) FROM PurchaseCart"_s);
}

QString CashTill::sums() const
{
    return file().cell(u"SELECT CAST(round(100 * (SELECT total(PurchasedItemsCost) FROM PurchaseCart)) AS INTEGER) || "
                       "' of ' || (SELECT coalesce(sum(Amount), 0) FROM HarrowbyPayment WHERE State = 'PAID')"_s);
}

} // namespace harrowby::app::test
