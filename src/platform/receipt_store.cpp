// SPDX-License-Identifier: MIT
#include "platform/receipt_store.h"

#include "basic/logging.h"

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

bool writeDurably(QTemporaryFile &file, const QByteArray &bytes)
{
    return file.open() && file.write(bytes) == bytes.size() && file.flush() && ::fsync(file.handle()) == 0;
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

QString storeIn(const QDir &folder, const QByteArray &pdf, const QString &title)
{
    QString reason = u"the folder cannot be created"_s;
    if (folder.mkpath(u"."_s)) {
        QTemporaryFile file(folder.filePath(u".receipt-XXXXXX"_s));
        if (writeDurably(file, pdf)) {
            if (const QString path = rename(file, folder, title); !path.isEmpty()) {
                file.setAutoRemove(false);
                syncFolder(folder);
                return path;
            }
        }
        reason = file.errorString();
    }
    qCWarning(lcPrint).noquote() << "Receipt" << title << "cannot be written into" << folder.path() << "-" << reason;
    return {};
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

QString storeReceipt(const QByteArray &pdf, const QDateTime &time)
{
    const QStringList folders = receiptFolders();
    for (const QString &folder : folders) {
        if (const QString path = storeIn(QDir(folder), pdf, receiptTitle(time)); !path.isEmpty())
            return path;
    }
    return {};
}

} // namespace harrowby
