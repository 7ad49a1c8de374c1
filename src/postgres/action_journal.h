// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "postgres/action_server.h"

#include <QString>
#include <QUuid>

#include <map>
#include <optional>
#include <vector>

namespace harrowby::postgres {

/// A write of which nobody knows yet whether it was done.
struct OpenAction
{
    ActionNumber action;
    QString what; ///< Write::what, perhaps cut short
};

/// A program that ended without saying so: killed, or with this machine.
struct LeftWriter
{
    QUuid writer;
    std::optional<OpenAction> open; ///< the write that it has told as unknown, if any
};

/// Which of those that were left behind.
enum class Left {
    WithoutOpen, ///< the others keep: their writes are told by a program that has somebody to tell
    All,
};

/// What must outlive the program: which writers run, and the open write of each. No function throws.
class ActionJournal
{
public:
    virtual ~ActionJournal() = default;

    /// Notes that this writer runs. Before its first write.
    [[nodiscard]] virtual Result<void, QString> enter(const QUuid &writer) = 0;
    /// Those that were noted and run no longer, each handed out to one running program alone.
    [[nodiscard]] virtual std::vector<LeftWriter> leftBehind(Left which) = 0;
    /// On the disk when it returns. For the writer that was entered, which is tried again when it had failed.
    [[nodiscard]] virtual Result<void, QString> keep(const OpenAction &open) = 0;
    /// The entered writer's open write has been resolved.
    virtual void resolved() = 0;
    /// A writer is noted no longer: the entered one at its end, or one that was left behind.
    virtual void leave(const QUuid &writer) = 0;
};

/// The journal as a folder, with one small file for each writer. A running program keeps its own locked (flock()), so
/// that others let it be. A file has its full size from the start: an open write can be noted on a disk that is full.
/// The folder belongs to one store of one shop; several programs may use it at once.
class ActionFolder final : public ActionJournal
{
public:
    /// Made when it is missing.
    explicit ActionFolder(QString folder);
    ~ActionFolder() override;
    ActionFolder(const ActionFolder &) = delete;
    ActionFolder &operator=(const ActionFolder &) = delete;

    [[nodiscard]] Result<void, QString> enter(const QUuid &writer) override;
    [[nodiscard]] std::vector<LeftWriter> leftBehind(Left which) override;
    [[nodiscard]] Result<void, QString> keep(const OpenAction &open) override;
    void resolved() override;
    void leave(const QUuid &writer) override;

private:
    [[nodiscard]] QString fileOf(const QUuid &writer) const;

    QString m_folder;
    QUuid m_writer;                     ///< the entered one
    std::map<QUuid, int> m_descriptors; ///< of the files that this program has locked
};

} // namespace harrowby::postgres
