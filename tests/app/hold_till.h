// SPDX-License-Identifier: MIT
#pragma once

#include "app/hold/hold_desk.h"
#include "app/records/sqlite_records.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QDialog>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace harrowby::app::test {

/// Notes its statements, and lets one of them fail.
class FussyRecords final : public SqliteRecords
{
public:
    using SqliteRecords::SqliteRecords;

    QStringList texts;
    int failAt = -1; ///< the statement of that number, counted from 0, begin and commit among them

protected:
    Answer<QList<RecordRow>> select(const RecordStatement &statement) override
    {
        if (auto failure = fails(statement.text))
            return Unexpected(*failure);
        return SqliteRecords::select(statement);
    }
    Answer<std::int64_t> change(const RecordStatement &statement) override
    {
        if (auto failure = fails(statement.text))
            return Unexpected(*failure);
        return SqliteRecords::change(statement);
    }
    std::optional<DbFailure> begin() override
    {
        auto failure = fails(QStringLiteral("begin"));
        return failure ? failure : SqliteRecords::begin();
    }
    std::optional<DbFailure> commit() override
    {
        auto failure = fails(QStringLiteral("commit"));
        return failure ? failure : SqliteRecords::commit();
    }

private:
    std::optional<DbFailure> fails(const QString &text)
    {
        texts << text;
        if (texts.size() - 1 != failAt)
            return {};
        return DbFailure{DbFailure::Kind::Write, text, QStringLiteral("the disk is gone"), 10};
    }
};

/// A till at which carts are held and recalled, with five items, anew for each test function.
class HoldTill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    [[nodiscard]] static harrowby::Counter &counter() { return harrowby::Counter::instance(); }
    [[nodiscard]] QStringList cart() const { return m_till->cart(); }
    void press(const QString &name) const;
    /// Runs `act` when the next dialog is shown, after those that were asked for before.
    void inNextDialog(const std::function<void(QDialog &)> &act);
    void meetDialog();
    void answerNextBox(const QString &begin, const QString &button);
    void answerRecall(const QString &word, const QString &button);
    /// Holds what is in the cart under a word, without the dialog.
    void holdAs(const QString &word);
    [[nodiscard]] QString idOf(const QString &word);
    [[nodiscard]] QStringList heldWords();
    [[nodiscard]] QStringList heldLines() const;

    std::unique_ptr<harrowby::test::Counter> m_till;
    std::unique_ptr<FussyRecords> m_records;
    std::unique_ptr<HoldDesk> m_desk;
    std::unique_ptr<HeldCarts> m_carts;
    QStringList m_said;
    std::deque<std::function<void(QDialog &)>> m_acts;
    QTimer m_poll;
    int m_dialogs = 0;
};

} // namespace harrowby::app::test
