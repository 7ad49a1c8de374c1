// SPDX-License-Identifier: MIT
#include "tests/support/doubles.h"

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

QString address(const QString &section, const QString &key)
{
    return (section + u"/"_s + key).toLower();
}

} // namespace

QString MemorySettings::get(const QString &section, const QString &key, const QString &defaultValue)
{
    return values.value(address(section, key), defaultValue);
}

void MemorySettings::save(const QString &section, const QString &key, const QString &value)
{
    values.insert(address(section, key), value);
}

QStringList PaperPrinter::texts() const
{
    QStringList all;
    for (const PrintedLine &line : lines)
        all << line.text;
    return all;
}

QStringList PaperPrinters::deviceNames()
{
    QStringList names;
    for (const std::shared_ptr<PaperPrinter> &printer : installed)
        names << printer->deviceName();
    return names;
}

std::shared_ptr<Printer> PaperPrinters::printer(const QString &deviceName)
{
    for (const std::shared_ptr<PaperPrinter> &printer : installed) {
        if (printer->deviceName() == deviceName)
            return printer;
    }
    return nullptr;
}

std::shared_ptr<Printer> PaperPrinters::current()
{
    return m_current ? m_current : installed.back();
}

void PaperPrinters::setCurrent(std::shared_ptr<Printer> printer)
{
    m_current = std::move(printer);
}

PaperPrinter &PaperPrinters::paper()
{
    return static_cast<PaperPrinter &>(*current());
}

namespace {

/// Passes a result's first rows on, and breaks.
class BreakingCursor final : public DbCursor
{
public:
    BreakingCursor(std::unique_ptr<DbCursor> below, int rows) : m_below(std::move(below)), m_rows(rows) {}

    [[nodiscard]] QStringList columnNames() const override { return m_below->columnNames(); }
    [[nodiscard]] Step next() override { return m_rows-- > 0 ? m_below->next() : Step::Failed; }
    [[nodiscard]] DbValue value(int column) const override { return m_below->value(column); }
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override { return m_below->text(column); }

private:
    std::unique_ptr<DbCursor> m_below;
    int m_rows;
};

} // namespace

bool RecordingConnection::passes(const QString &statement)
{
    statements << statement;
    before(statement);
    if (!fails(statement))
        return true;
    reportFailure({DbFailure::Kind::Write, statement, u"picked by the test"_s, 0});
    return false;
}

bool RecordingConnection::Execute(const QString &statement)
{
    return passes(statement) && m_below->Execute(statement);
}

std::unique_ptr<DbCursor> RecordingConnection::query(const QString &select)
{
    std::unique_ptr<DbCursor> cursor = passes(select) ? m_below->query(select) : nullptr;
    const int rows = rowsUntilBreak(select);
    return cursor && rows >= 0 ? std::make_unique<BreakingCursor>(std::move(cursor), rows) : std::move(cursor);
}

std::optional<std::int64_t> RecordingConnection::countRows(const QString &select)
{
    ++counted;
    return m_below->countRows(select);
}

std::optional<std::vector<DbRowId>> RecordingConnection::rowIds(const QString &select)
{
    return m_below->rowIds(select);
}

bool RecordingConnection::insertRow(const QString &table, const DbAssignments &values)
{
    return passes(u"insert "_s + table) && m_below->insertRow(table, values);
}

bool RecordingConnection::updateRow(const QString &table, DbRowId row, const DbAssignments &values)
{
    return passes(u"update "_s + table) && m_below->updateRow(table, row, values);
}

bool RecordingConnection::settle(const QString &write)
{
    if (write.isEmpty() || !losesCommits)
        return m_below->settle(write);
    m_below->settle({});
    reportFailure({DbFailure::Kind::Write, write, u"picked by the test"_s, 0});
    return false;
}

} // namespace harrowby::test
