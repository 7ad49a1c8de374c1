// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <QString>

namespace harrowby::app {

/// Why a store file cannot be used.
enum class ProblemKind {
    Folder,          ///< the name is a folder's
    NotAFile,        ///< the name is a device's, a pipe's, or a link to nothing
    NoFolder,        ///< the folder to make the file in does not exist
    FolderLocked,    ///< the folder cannot be written
    Unreadable,      ///< the file cannot be read
    ReadOnly,        ///< the file can be read but not written
    Empty,           ///< the file holds not a byte
    NoDatabase,      ///< the file is something else
    Damaged,         ///< the file fails SQLite's check
    Locked,          ///< another program keeps it to itself
    MissingTable,    ///< a table is missing
    MissingColumn,   ///< a column is missing
    NoFile,          ///< the name is that of a database in memory
    BadName,         ///< the name is not valid UTF-8
    NoRowIdentity,   ///< a row of a table cannot be found again
    GeneratedColumn, ///< a column that is written is computed
    Unfit,           ///< a statement of the component cannot work
    LeftOverLog,     ///< there is no file, but the log of one
    ForeignLog,      ///< beside the file lies the log of the one that was here before
    DiskFull,        ///< no space to make or prepare it
    Other,           ///< the engine refuses for another reason
};

struct StoreProblem
{
    ProblemKind kind;
    QString text; ///< what is wrong with which file, a line break, and what to do
};

/// Without what to do, which is about a store that is to be sold from.
[[nodiscard]] QString whatIsWrong(const StoreProblem &problem);

/// `path` is named in the text; `detail` is the table, the column, the other file, what does not fit, or the engine's
/// own words.
[[nodiscard]] StoreProblem storeProblem(ProblemKind kind, const QString &path, const QString &detail = {});

/// The problem behind an engine's error on the file.
[[nodiscard]] StoreProblem engineProblem(const SqlError &error, const QString &path);

} // namespace harrowby::app
