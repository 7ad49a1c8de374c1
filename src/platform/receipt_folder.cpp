// SPDX-License-Identifier: MIT
#include "platform/receipt_folder.h"

#include "basic/logging.h"
#include "basic/private_files.h"
#include "platform/failure_telling.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

constexpr int mostOfOneSecond = 1000;

QString candidate(const QDir &folder, const QString &title, int number)
{
    const QString suffix = number == 1 ? QString() : u" (%1)"_s.arg(number);
    return folder.filePath(title + suffix + u".pdf"_s);
}

/// Makes the new name of a file in the folder survive a power cut. Not every file system can; that is no failure.
void syncFolder(const QDir &folder)
{
    const int handle = ::open(QFile::encodeName(folder.path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    ::fsync(handle);
    ::close(handle);
}

/// Gives the file its first free name; a name that another program takes meanwhile is passed over.
QString rename(QTemporaryFile &file, const QDir &folder, const QString &title)
{
    for (int number = 1; number <= mostOfOneSecond; ++number) {
        const QString path = candidate(folder, title, number);
        if (QFile::exists(path))
            continue;
        if (file.rename(path))
            return path;
        if (!QFile::exists(path))
            break;
    }
    return {};
}

struct Outcome
{
    QString path; ///< of the stored receipt; empty when it was not stored
    QString reason;
};

Outcome keepIn(const QDir &folder, const QByteArray &pdf, const QString &title)
{
    QString reason = makePrivateFolder(folder.path());
    if (reason.isEmpty()) {
        QTemporaryFile file(folder.filePath(u".receipt-XXXXXX"_s)); // its owner's alone
        reason = file.open() ? writeToDisk(file.handle(), pdf) : file.errorString();
        const QString path = reason.isEmpty() ? rename(file, folder, title) : QString();
        if (!path.isEmpty()) {
            file.setAutoRemove(false);
            syncFolder(folder);
            return {path, {}};
        }
        if (reason.isEmpty())
            reason = file.errorString();
    }
    qCWarning(lcPrint).noquote() << "Receipt" << title << "cannot be written into" << folder.path() << "-" << reason;
    return {{}, reason};
}

} // namespace

QStringList receiptFolders()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return {documents + u"/Harrowby Receipts"_s, data + u"/Harrowby/Harrowby Receipts"_s};
}

QString receiptTitle(const QDateTime &time)
{
    return u"Receipt "_s + time.toString(u"yyyy-MM-dd HH-mm-ss"_s);
}

QString keepReceipt(const QByteArray &pdf, const QDateTime &time)
{
    const QStringList folders = receiptFolders();
    QStringList reasons;
    for (const QString &folder : folders) {
        const Outcome outcome = keepIn(QDir(folder), pdf, receiptTitle(time));
        if (!outcome.path.isEmpty()) {
            FailureTelling::reportSuccess(FileFailure::Kind::Receipt, folder);
            return outcome.path;
        }
        reasons << outcome.reason;
    }
    reasons.removeDuplicates();
    FailureTelling::report(FileFailure::Kind::Receipt, folders.constFirst(), reasons.join(u"; "_s));
    return {};
}

} // namespace harrowby
