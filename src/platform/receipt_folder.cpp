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

/// The path of the stored receipt; or why it was not stored.
Result<QString, QString> keepIn(const QDir &folder, const QByteArray &pdf, const QString &title)
{
    if (const auto made = makePrivateFolder(folder.path()); !made)
        return Unexpected(made.error());
    QTemporaryFile file(folder.filePath(u".receipt-XXXXXX"_s)); // mode 0600
    if (!file.open())
        return Unexpected(file.errorString());
    if (const auto written = writeToDisk(file.handle(), pdf); !written)
        return Unexpected(written.error());
    const QString path = rename(file, folder, title);
    if (path.isEmpty())
        return Unexpected(file.errorString());
    file.setAutoRemove(false);
    syncFolder(folder);
    return path;
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
        const auto path = keepIn(QDir(folder), pdf, receiptTitle(time));
        if (path) {
            FailureTelling::reportSuccess(FileFailure::Kind::Receipt, folder);
            return *path;
        }
        qCWarning(lcPrint).noquote() << "Receipt" << receiptTitle(time) << "cannot be written into" << folder << "-"
                                     << path.error();
        reasons << path.error();
    }
    reasons.removeDuplicates();
    FailureTelling::report(FileFailure::Kind::Receipt, folders.constFirst(), reasons.join(u"; "_s));
    return {};
}

} // namespace harrowby
