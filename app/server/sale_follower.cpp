// SPDX-License-Identifier: MIT
#include "app/server/sale_follower.h"

#include "app/hold/hold_words.h"
#include "app/shop/failure_notice.h"
#include "app/shop/failure_text.h"
#include "basic/logging.h"
#include "basic/numbers.h"

#include <QRegularExpression>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int retryMs = 300; ///< while a box is open

/// No step could be done again: the cart is empty.
QString lostPurchaseAdvice()
{
    return u"Write it down: the reports do not have it."_s;
}

struct NotedPurchase
{
    QString id;
    QString sum;
};

/// As the connection has noted it.
std::optional<NotedPurchase> purchaseOf(const QString &statement)
{
    static const QRegularExpression noted(u"^INSERT PurchaseCart (.+) (\\S+)$"_s,
                                          QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = noted.match(statement);
    if (!match.hasMatch())
        return {};
    return NotedPurchase{match.captured(1), formatMoney(match.captured(2).toDouble())};
}

/// What became of a purchase that was not known, and was not done.
QString settledPurchaseWords(const QString &statement)
{
    const auto purchase = purchaseOf(statement);
    return purchase ? u"Known now: the purchase %1 over %2 was not recorded."_s.arg(purchase->id, purchase->sum)
                    : settledWork(statement, false);
}

bool isOfPurchase(const QString &statement)
{
    return statement.startsWith("INSERT PurchaseCart"_L1, Qt::CaseInsensitive);
}

QString lineWords(const StockMiss &line)
{
    return u"%1 x %2 (%3)"_s.arg(plainText(line.units), line.name, line.stockId);
}

void tellNeverKnown(FailureNotice &notice, const QString &statement)
{
    const auto line = missOf(statement);
    const bool isLine = line && line->kind == StockMiss::Kind::NotLowered;
    const auto purchase = purchaseOf(statement);
    const auto subject = u"never known"_s;
    notice.tellOver(subject); // each is told
    if (!isLine)              // of a line the doubt was told in words of its own
        notice.forget(doubtfulWork({DbFailure::Kind::Write, statement, {}}));
    const QString work = isLine     ? u"the stock of %1 was lowered."_s.arg(lineWords(*line))
                         : purchase ? u"the purchase %1 over %2 was recorded."_s.arg(purchase->id, purchase->sum)
                                    : QString();
    notice.tell({subject,
                 work.isEmpty() ? neverKnownWork(statement) : u"It cannot be found out any more whether "_s + work,
                 u"the numbers of this machine's writes have gone on without it"_s,
                 isLine ? u"Have the item counted."_s : u"Look whether it is there before you do it again."_s, true,
                 true, Notice::Outcome::NotKnown});
}

} // namespace

SaleFollower::SaleFollower(Counter &counter, FailureNotice &notice, QObject *parent) :
    QObject(parent), m_counter(counter), m_notice(notice)
{
    connect(&m_counter, &Counter::purchased, this, &SaleFollower::follow);
    connect(&m_counter, &Counter::loggedIn, this, &SaleFollower::bringBack);
}

void SaleFollower::note(const DbFailure &failure, WriteOutcome outcome)
{
    if (failure.kind != DbFailure::Kind::Write)
        return;
    if (outcome == WriteOutcome::Unknown)
        ++m_doubts;
    if (outcome == WriteOutcome::Unknown && isOfPurchase(failure.statement))
        m_doubtfulRow = failure;
    const auto line = missOf(failure.statement);
    if (line && line->kind == StockMiss::Kind::NotLowered)
        m_misses << Miss{failure, outcome, *line}; // told with its purchase
    else if (outcome == WriteOutcome::Refused && isOfPurchase(failure.statement))
        m_row = failure;
    else if (outcome == WriteOutcome::Unknown)
        m_notice.addDoubtful(failure);
    else
        m_notice.add(failure);
}

void SaleFollower::settle(const QString &statement, WriteOutcome known)
{
    m_doubts = std::max(m_doubts - 1, 0); // those of an earlier program have not been counted
    if (const auto line = missOf(statement); line && line->kind == StockMiss::Kind::NotLowered) {
        if (settleMiss(lineWords(*line), known))
            return;
        forgetDoubt(lineWords(*line));
    }
    if (isOfPurchase(statement) && settleRow(statement, known))
        return;
    tellSettled(m_notice, statement, known);
}

/// The row of a purchase that has not been told yet: it is told with it, or the cart comes back. What else follows the
/// sale, as its payment, goes by what is known, too.
bool SaleFollower::settleRow(const QString &statement, WriteOutcome known)
{
    const auto row = std::exchange(m_doubtfulRow, std::nullopt);
    const auto purchase = purchaseOf(statement);
    if (row && purchase && known != WriteOutcome::Unknown)
        m_counter.setKnownRow(purchase->id, known == WriteOutcome::Done ? CounterPurchase::Row::Written
                                                                        : CounterPurchase::Row::NotWritten);
    if (!row || known != WriteOutcome::Refused)
        return false;
    m_notice.forget(doubtfulWork(*row));
    m_row = row;
    return true;
}

/// Of a purchase that has not been told yet, as while its summary stands there: it is told with it as what it is, but
/// for one that can never be known.
bool SaleFollower::settleMiss(const QString &line, WriteOutcome known)
{
    const auto isIt = [&](const Miss &miss) {
        return miss.outcome == WriteOutcome::Unknown && lineWords(miss.line) == line;
    };
    const auto miss = std::find_if(m_misses.begin(), m_misses.end(), isIt);
    if (miss == m_misses.end())
        return false;
    if (known == WriteOutcome::Refused)
        miss->outcome = known;
    else
        m_misses.erase(miss);
    return known != WriteOutcome::Unknown;
}

void SaleFollower::forgetDoubt(const QString &line)
{
    const auto isIt = [&](const Doubt &doubt) { return doubt.line == line; };
    const auto doubt = std::find_if(m_toldDoubts.cbegin(), m_toldDoubts.cend(), isIt);
    if (doubt == m_toldDoubts.cend())
        return;
    m_notice.forget(doubt->told);
    m_toldDoubts.erase(doubt);
}

void tellSettled(FailureNotice &notice, const QString &statement, WriteOutcome known)
{
    if (known == WriteOutcome::Unknown)
        return tellNeverKnown(notice, statement);
    const bool isDone = known == WriteOutcome::Done;
    const auto line = missOf(statement);
    if (!isDone && isOfPurchase(statement))
        return notice.settle(statement, settledPurchaseWords(statement), lostPurchaseAdvice());
    if (!line || line->kind != StockMiss::Kind::NotLowered)
        return notice.settle(statement, isDone);
    const QString work = isDone ? u"Known now: the stock of %1 was lowered."_s
                                : u"Known now: %1 was sold, but its stock was not lowered."_s;
    const auto subject = u"settled line"_s;
    notice.tellOver(subject); // each is told
    notice.tell({subject, work.arg(lineWords(*line)), u"the server has been asked"_s,
                 isDone ? u"Nothing is left to do."_s : u"Have the item counted."_s, true, true,
                 Notice::Outcome::Settled});
}

void SaleFollower::follow(const CounterPurchase &purchase)
{
    const QList<Miss> misses = std::exchange(m_misses, {});
    const auto row = std::exchange(m_row, std::nullopt);
    m_doubtfulRow.reset();
    const auto isRefused = [](const Miss &miss) { return miss.outcome == WriteOutcome::Refused; };
    const bool isNothingDone = (row || purchase.row == CounterPurchase::Row::NotWritten) && !purchase.lines.empty() &&
                               misses.size() == static_cast<qsizetype>(purchase.lines.size()) &&
                               std::all_of(misses.cbegin(), misses.cend(), isRefused);
    if (!isNothingDone) {
        if (row)
            m_notice.tell({u"row "_s + purchase.id,
                           u"The purchase %1 over %2 was not recorded."_s.arg(purchase.id, formatMoney(purchase.total)),
                           failureReason(*row), lostPurchaseAdvice()});
        for (const Miss &miss : misses)
            tell(miss, purchase.id);
        return;
    }
    m_back.push_back({purchase.id, purchase.lines});
    m_notice.tell({u"cart "_s + purchase.id,
                   u"Nothing of the purchase %1 was sold, and its cart is kept."_s.arg(purchase.id),
                   failureReason(misses.constFirst().failure),
                   u"It comes back into the counter. A receipt that was printed for it is void."_s});
    bringBack();
}

void SaleFollower::tell(const Miss &miss, const QString &purchaseId)
{
    const bool isKnown = miss.outcome == WriteOutcome::Refused;
    const QString work = isKnown ? u"%1 sold, but the stock was not lowered (purchase %2)."_s
                                 : u"%1 sold; it is not known whether the stock was lowered (purchase %2)."_s;
    const QString line = lineWords(miss.line);
    if (!isKnown)
        m_toldDoubts.append({line, work.arg(line, purchaseId)});
    m_notice.tell({u"line "_s + purchaseId + line, work.arg(line, purchaseId), failureReason(miss.failure),
                   isKnown ? u"Have the item counted."_s
                           : u"As soon as the server answers, the till finds out and says so here."_s,
                   false, true, isKnown ? Notice::Outcome::NotDone : Notice::Outcome::NotKnown});
}

/// After a logout there is no counter to put it into until somebody logs in.
void SaleFollower::bringBack()
{
    while (!m_back.empty() && m_counter.user()) {
        std::vector<CounterMisfit> misfits;
        const CounterAnswer answer = m_counter.putCart(m_back.front().lines, misfits);
        if (answer == CounterAnswer::Busy) {
            QTimer::singleShot(retryMs, this, &SaleFollower::bringBack);
            return;
        }
        if (answer != CounterAnswer::Done) {
            qCWarning(lcWindow) << "A cart could not be put back into the counter";
            return;
        }
        const Cart back = std::move(m_back.front());
        m_back.erase(m_back.begin());
        if (!misfits.empty()) // its money may have been taken
            m_notice.tell({u"misfits "_s + back.purchaseId,
                           u"Not all of the purchase %1 is as it was:\n"_s.arg(back.purchaseId) +
                               misfitLines(misfits).join(u'\n'),
                           u"the store has changed meanwhile, or could not be read"_s,
                           u"Look at the cart before it is sold again."_s, false, false});
        Q_EMIT cartIsBack(back.purchaseId);
    }
}

} // namespace harrowby::app
