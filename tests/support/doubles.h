// SPDX-License-Identifier: MIT
#pragma once

#include "platform/clock.h"
#include "platform/printers.h"
#include "platform/saved_settings.h"

#include <harrowby/db_connection.h>

#include <QMap>
#include <QStringList>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace harrowby::test {

/// Stands still until it is told otherwise.
class FrozenClock final : public Clock
{
public:
    QDateTime time = QDateTime(QDate(2018, 3, 5), QTime(14, 7, 9));
    [[nodiscard]] QDateTime now() const override { return time; }
};

/// Saved settings in memory; section and key without regard to case.
class MemorySettings final : public SavedSettings
{
public:
    QMap<QString, QString> values; ///< by "section/key" in lower case
    [[nodiscard]] QString get(const QString &section, const QString &key, const QString &defaultValue) override;
    void save(const QString &section, const QString &key, const QString &value) override;
};

/// One printed line, with the font it was printed in.
struct PrintedLine
{
    int fontSize = 0;
    bool bold = false;
    QString text;
};

/// A printer that keeps what it is given.
class PaperPrinter final : public Printer
{
public:
    explicit PaperPrinter(QString deviceName) : m_deviceName(std::move(deviceName)) {}
    [[nodiscard]] QString deviceName() const override { return m_deviceName; }
    void setFontSize(int points) override { m_size = points; }
    void setFontBold(bool bold) override { m_bold = bold; }
    void printLine(const QString &text) override { lines.push_back({m_size, m_bold, text}); }
    void endDocument() override { ++documents; }
    [[nodiscard]] QStringList texts() const;

    std::vector<PrintedLine> lines;
    int documents = 0;

private:
    QString m_deviceName;
    int m_size = 0;
    bool m_bold = false;
};

class PaperPrinters final : public Printers
{
public:
    std::vector<std::shared_ptr<PaperPrinter>> installed{std::make_shared<PaperPrinter>(QStringLiteral("Till")),
                                                         std::make_shared<PaperPrinter>(QStringLiteral("Back office"))};
    [[nodiscard]] QStringList deviceNames() override;
    [[nodiscard]] std::shared_ptr<Printer> printer(const QString &deviceName) override;
    [[nodiscard]] std::shared_ptr<Printer> current() override;
    void setCurrent(std::shared_ptr<Printer> printer) override;
    /// The current one, as what it is; the platform's default (the last one) when none was chosen.
    [[nodiscard]] PaperPrinter &paper();

private:
    std::shared_ptr<Printer> m_current;
};

/// Passes everything on to another connection, notes each statement, and fails those that a test picks.
class RecordingConnection final : public DbConnection
{
public:
    explicit RecordingConnection(std::shared_ptr<DbConnection> below) : m_below(std::move(below)) {}

    QStringList statements; ///< texts of Execute() and query(), "insert <table>" and "update <table>"
    int counted = 0;        ///< calls of countRows()
    std::function<bool(const QString &statement)> fails = [](const QString &) { return false; };
    std::function<void(const QString &statement)> before = [](const QString &) {};

    bool Execute(const QString &statement) override;
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &select) override;
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &select) override;
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &select) override;
    bool insertRow(const QString &table, const DbAssignments &values) override;
    bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) override;
    [[nodiscard]] QString location() const override { return m_below->location(); }
    /// Statements that yield this many rows (0 and more) and then break.
    std::function<int(const QString &select)> rowsUntilBreak = [](const QString &) { return -1; };
    bool refusesHolds = false;
    bool losesCommits = false; ///< of what is held
    bool hold() override { return !refusesHolds && m_below->hold(); }
    bool settle(const QString &write) override;

private:
    bool passes(const QString &statement);
    std::shared_ptr<DbConnection> m_below;
};

} // namespace harrowby::test
