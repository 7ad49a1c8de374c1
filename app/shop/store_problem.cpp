// SPDX-License-Identifier: MIT
#include "app/shop/store_problem.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

struct ProblemText
{
    QString what; ///< with {file}, {folder} and {detail} to be filled in
    QString whatToDo;
};

ProblemText placeText(ProblemKind kind)
{
    switch (kind) {
    case ProblemKind::Folder:
        return {u"\"{file}\" is a folder."_s, u"Name a file in it, for example \"{file}/store.sqlite\"."_s};
    case ProblemKind::NotAFile:
        return {u"\"{file}\" is not an ordinary file."_s,
                u"Name an ordinary file. If it is a link, check that what it leads to still exists."_s};
    case ProblemKind::NoFolder:
        return {u"There is no folder \"{folder}\" to make the store file \"{file}\" in."_s,
                u"Check the name, or create the folder first."_s};
    case ProblemKind::FolderLocked:
        return {u"The store file \"{file}\" cannot be used, because its folder \"{folder}\" cannot be written."_s,
                u"A till keeps a log beside its store file. Allow writing to the folder, or move the store file to one "
                "of your own."_s};
    case ProblemKind::Unreadable:
        return {u"The store file \"{file}\" cannot be read."_s, u"Ask its owner to allow you to read and write it."_s};
    case ProblemKind::ReadOnly:
        return {u"The store file \"{file}\" cannot be sold from, because \"{detail}\" is read-only."_s,
                u"Allow writing to it, or copy the store file to a place where you may write."_s};
    case ProblemKind::ForeignLog:
        return {u"Beside the store file \"{file}\" lies the log of another one: \"{detail}\"."_s,
                u"Another file was put in its place before the log was done with, and the log may hold the last sales "
                "of the file that was here before. Put that back if it is the right one; else move the log away, and "
                "keep it."_s};
    case ProblemKind::NoFile:
        return {u"\"{file}\" is no file: what is sold would be gone when the till is closed."_s,
                u"Name a file, for example \"store.sqlite\"."_s};
    case ProblemKind::BadName:
        return {u"The name \"{file}\" is not valid UTF-8."_s,
                u"Give the file, or the folder that it lies in, a name that is, then start again."_s};
    default:
        return {u"\"{file}\" is the log of a store file that is gone: there is no \"{detail}\"."_s,
                u"It may hold the last sales. If the store file was moved, put both together again; if it is not "
                "needed any more, move the log away."_s};
    }
}

/// What is left to do when the store is not as the component needs it.
const QString ownersWork = u"Let the program that it belongs to change that, or check the name; the file has been left "
                           "as it was."_s;

/// What SQLite cannot read, a restore keeps as it is.
const QString restoreLine =
    u"harrowby --restore BACKUP --database \"{file}\" puts it in the place of this file, which is kept."_s;

ProblemText contentText(ProblemKind kind)
{
    switch (kind) {
    case ProblemKind::Empty:
        return {u"The file \"{file}\" is empty."_s,
                u"To start a new store, delete it or choose a name that does not exist yet; otherwise bring back a "
                "backup: "_s +
                    restoreLine};
    case ProblemKind::NoDatabase:
        return {
            u"The file \"{file}\" is not an SQLite database."_s,
            u"Check the name; the file has been left as it was. If it was the store, bring back the last backup: "_s +
                restoreLine};
    case ProblemKind::Damaged:
        return {u"The store file \"{file}\" is damaged ({detail})."_s,
                u"Do not sell from it. Close all tills, and bring back the last backup: "_s + restoreLine};
    case ProblemKind::MissingTable:
        return {u"The file \"{file}\" is not a store file: it lacks the table {detail}."_s,
                u"Check the name; the file has been left as it was."_s};
    case ProblemKind::MissingColumn:
        return {u"The file \"{file}\" does not fit: it lacks the column {detail}."_s,
                u"Bring it up to date with the program that it belongs to, or check the name; the file has been left "
                "as it was."_s};
    case ProblemKind::NoRowIdentity:
        return {u"The file \"{file}\" does not fit: the table {detail} is WITHOUT ROWID, or its columns have taken "
                "rowid, _rowid_ and oid, so that one of its rows cannot be found again to change it."_s,
                ownersWork};
    case ProblemKind::GeneratedColumn:
        return {
            u"The file \"{file}\" does not fit: the column {detail} is generated, so nothing can be stored in it."_s,
            ownersWork};
    case ProblemKind::Unfit:
        return {u"The file \"{file}\" does not fit: {detail}."_s, ownersWork};
    case ProblemKind::Locked:
        return {u"The store file \"{file}\" is locked by another program."_s,
                u"Close the program that keeps it (a database tool, a backup), then start again."_s};
    case ProblemKind::DiskFull:
        return {u"There is no space left on the disk of the store file \"{file}\"."_s,
                u"Free some space, then start again."_s};
    default:
        return {u"The store file \"{file}\" cannot be used ({detail})."_s,
                u"Check the disk and the name, then start again."_s};
    }
}

bool isAboutPlace(ProblemKind kind)
{
    return kind <= ProblemKind::ReadOnly || kind == ProblemKind::NoFile || kind == ProblemKind::BadName ||
           kind == ProblemKind::LeftOverLog || kind == ProblemKind::ForeignLog;
}

ProblemKind kindOf(int engineCode)
{
    switch (engineCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return ProblemKind::Locked;
    case SQLITE_NOTADB:
        return ProblemKind::NoDatabase;
    case SQLITE_CORRUPT:
        return ProblemKind::Damaged;
    case SQLITE_READONLY:
        return ProblemKind::ReadOnly;
    case SQLITE_FULL:
        return ProblemKind::DiskFull;
    default:
        return ProblemKind::Other;
    }
}

struct Names
{
    QString file, folder, detail;
};

/// All placeholders in one pass, so that a "{folder}" in a file's name is not replaced.
QString filled(const QString &text, const Names &names)
{
    static const QRegularExpression mark(uR"(\{(file|folder|detail)\})"_s);
    QString result;
    qsizetype from = 0;
    for (auto marks = mark.globalMatch(text); marks.hasNext();) {
        const QRegularExpressionMatch match = marks.next();
        const QString name = match.captured(1);
        result += text.mid(from, match.capturedStart() - from);
        result += name == u"file"_s ? names.file : name == u"folder"_s ? names.folder : names.detail;
        from = match.capturedEnd();
    }
    return result + text.mid(from);
}

} // namespace

StoreProblem storeProblem(ProblemKind kind, const QString &path, const QString &detail)
{
    const ProblemText text = isAboutPlace(kind) ? placeText(kind) : contentText(kind);
    const Names names = {path, QFileInfo(path).absolutePath(), detail.isEmpty() ? path : detail};
    return {kind, filled(text.what, names) + u'\n' + filled(text.whatToDo, names)};
}

QString whatIsWrong(const StoreProblem &problem)
{
    return problem.text.left(problem.text.lastIndexOf(u'\n'));
}

StoreProblem engineProblem(const SqlError &error, const QString &path)
{
    const ProblemKind kind = kindOf(error.code);
    return storeProblem(kind, path, kind == ProblemKind::ReadOnly ? path : error.reason);
}

} // namespace harrowby::app
