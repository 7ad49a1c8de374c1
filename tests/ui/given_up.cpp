// SPDX-License-Identifier: MIT
#include "tests/ui/given_up.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

/// Goes along with what a till says.
class SaleJudge
{
public:
    void read(const QString &line)
    {
        if (line == "L"_L1 || line == "P"_L1)
            endPress();
        else if (line == "S"_L1)
            begin();
        else if (line.startsWith("A1 "_L1) && isOfSale(line))
            m_isWritten = true;
        else if (line.startsWith("A0 "_L1))
            m_refused << line.sliced(3);
        else if (line.startsWith("AU "_L1))
            m_givenUp << u"not known, at sale %1: %2"_s.arg(m_sale).arg(line.sliced(3));
    }

    [[nodiscard]] QStringList finish()
    {
        endPress();
        if (m_isInCart)
            m_givenUp << u"sale %1 is in the cart still"_s.arg(m_sale);
        return m_givenUp;
    }

private:
    /// The activity log's entries are not.
    static bool isOfSale(const QString &line)
    {
        return line.startsWith("A1 Update Stocklist "_L1) || line.startsWith("A1 INSERT INTO PurchaseCart "_L1);
    }

    void begin()
    {
        m_refused.clear(); // what was chosen is not in the activity log: nothing of the sale
        if (m_isInCart)
            m_givenUp << u"sale %1 is gone from the cart"_s.arg(m_sale);
        m_isInCart = true;
        ++m_sale;
    }

    void endPress()
    {
        if (m_isWritten) {
            m_isInCart = false;
            for (const QString &statement : std::as_const(m_refused))
                m_givenUp << u"sale %1 is cut in two, without: %2"_s.arg(m_sale).arg(statement);
        }
        m_isWritten = false;
        m_refused.clear();
    }

    QStringList m_givenUp;
    QStringList m_refused; ///< by the press under way
    int m_sale = 0;
    bool m_isInCart = false;
    bool m_isWritten = false; ///< by the press under way, at least some of it
};

} // namespace

QStringList givenUp(const QByteArray &told)
{
    SaleJudge judge;
    for (const QByteArray &line : told.split('\n'))
        judge.read(QString::fromUtf8(line));
    return judge.finish();
}

} // namespace harrowby::test
