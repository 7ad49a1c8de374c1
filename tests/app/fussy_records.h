// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/sqlite_records.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace harrowby::app::test {

/// Notes statements of records, and lets one of them fail.
class Fuss
{
public:
    QStringList texts;
    int failAt = -1; ///< the statement of that number, counted from 0, begin and commit among them
    QString failOn;  ///< each statement of that text
    bool failAll = false;
    QString state;                     ///< of the server, of which it fails; none on a file
    std::function<void()> afterCommit; ///< called once, behind the next commit
    bool countsLooks = false;          ///< the looks for a table are statements, too

    std::optional<DbFailure> fails(const QString &text, DbFailure::Kind kind = DbFailure::Kind::Write)
    {
        texts << text;
        if (texts.size() - 1 != failAt && text != failOn && !failAll)
            return {};
        return DbFailure{kind, text, QStringLiteral("the disk is gone"), 10, state};
    }
};

/// Records of an engine with a Fuss of their own.
template <typename Engine>
class FussyEngine final : public Engine, public Fuss
{
public:
    using Engine::Engine;

protected:
    template <typename T>
    using Answer = Records::Answer<T>;

    Answer<bool> hasTable(const RecordTable &table) override
    {
        if (auto failure = countsLooks ? fails(QStringLiteral("look for ") + table.name) : std::nullopt)
            return Unexpected(*failure);
        return Engine::hasTable(table);
    }
    Answer<QList<RecordRow>> select(const RecordStatement &statement) override
    {
        if (auto failure = fails(statement.text, DbFailure::Kind::Read))
            return Unexpected(*failure);
        return Engine::select(statement);
    }
    Answer<bool> selectEach(const RecordStatement &statement, const Records::RowTaker &take) override
    {
        if (auto failure = fails(statement.text, DbFailure::Kind::Read))
            return Unexpected(*failure);
        return Engine::selectEach(statement, take);
    }
    Answer<std::int64_t> change(const RecordStatement &statement) override
    {
        if (auto failure = fails(statement.text))
            return Unexpected(*failure);
        return Engine::change(statement);
    }
    Answer<std::int64_t> changeEach(const QString &text, const QList<QList<RecordValue>> &rows) override
    {
        if (auto failure = fails(text))
            return Unexpected(*failure);
        return Engine::changeEach(text, rows);
    }
    std::optional<DbFailure> begin(const RecordTable &table, const QString &name) override
    {
        auto failure = fails(QStringLiteral("begin"));
        return failure ? failure : Engine::begin(table, name);
    }
    std::optional<DbFailure> commit() override
    {
        if (auto failure = fails(QStringLiteral("commit")))
            return failure;
        auto failure = Engine::commit();
        if (const auto act = std::exchange(afterCommit, {}))
            act();
        return failure;
    }
};

using FussyRecords = FussyEngine<SqliteRecords>;

} // namespace harrowby::app::test
