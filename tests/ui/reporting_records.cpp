// SPDX-License-Identifier: MIT
#include "tests/ui/reporting_records.h"

#include "tests/doubles/shop_file.h"
#include "tests/support/till.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

struct Literal
{
    QString operator()(std::monostate) const { return u"NULL"_s; }
    QString operator()(std::int64_t value) const { return QString::number(value); }
    QString operator()(double value) const { return QString::number(value, 'e', 16); }
    QString operator()(const QString &value) const { return quoted(value); }
    QString operator()(const QByteArray &value) const { return u"x'"_s + QString::fromLatin1(value.toHex()) + u'\''; }
};

/// The statement with its values in it.
QString runnable(const app::RecordStatement &statement)
{
    QStringList pieces = statement.text.split(u'?');
    QString text = pieces.takeFirst();
    for (const app::RecordValue &value : statement.values)
        text += std::visit(Literal(), value) + pieces.takeFirst();
    return text;
}

void sayDone(const QString &text, bool done)
{
    say((done ? u"A1 "_s : u"A0 "_s) + text);
}

} // namespace

app::Records::Answer<std::int64_t> ReportingRecords::change(const app::RecordStatement &statement)
{
    const QString text = runnable(statement);
    if (!m_isTogether)
        say(u"B "_s + text);
    auto changed = SqliteRecords::change(statement);
    if (!m_isTogether)
        sayDone(text, changed.has_value());
    else if (changed)
        m_texts << text;
    return changed;
}

app::Records::Answer<std::int64_t> ReportingRecords::changeEach(const QString &text,
                                                                const QList<QList<app::RecordValue>> &rows)
{
    QStringList texts;
    for (const QList<app::RecordValue> &values : rows)
        texts << runnable({text, values});
    const QString all = texts.join(u"; "_s);
    if (!m_isTogether)
        say(u"B "_s + all);
    auto changed = SqliteRecords::changeEach(text, rows);
    if (!m_isTogether)
        sayDone(all, changed.has_value());
    else if (changed)
        m_texts << texts;
    return changed;
}

bool ReportingRecords::takesPart(const QString &done)
{
    if (m_isTogether && !done.isEmpty())
        m_texts << done;
    return m_isTogether;
}

std::optional<DbFailure> ReportingRecords::begin(const app::RecordTable &table, const QString &name)
{
    m_isTogether = true;
    return SqliteRecords::begin(table, name);
}

std::optional<DbFailure> ReportingRecords::commit()
{
    const QString text = m_texts.join(u"; "_s);
    say(u"B "_s + text);
    auto failure = SqliteRecords::commit();
    sayDone(text, !failure);
    if (!failure)
        m_isTogether = false;
    m_texts.clear();
    return failure;
}

void ReportingRecords::rollBack()
{
    m_isTogether = false;
    m_texts.clear();
    SqliteRecords::rollBack();
}

} // namespace harrowby::test
