// SPDX-License-Identifier: MIT
#include "postgres/action_journal.h"

#include "basic/logging.h"
#include "basic/private_files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;

/// One block of the disk, so that it is there whole or not at all; the sum shows if not.
constexpr qsizetype recordSize = 512;
/// Hexadecimal SHA-256.
constexpr qsizetype sumSize = 64;
constexpr auto suffix = ".writer"_L1;

Unexpected<QString> systemReason()
{
    return Unexpected(qt_error_string(errno));
}

QByteArray sumOf(QByteArrayView bytes)
{
    return QCryptographicHash::hash(bytes.toByteArray(), QCryptographicHash::Sha256).toHex();
}

/// The text's beginning in at most `size` bytes of UTF-8.
QByteArray beginning(QString text, qsizetype size)
{
    QByteArray bytes = text.toUtf8();
    while (bytes.size() > size) {
        text.chop(text.back().isLowSurrogate() ? 2 : 1);
        bytes = text.toUtf8();
    }
    return bytes;
}

/// Number, words, blanks, sum; a writer without an open write has neither number nor words.
QByteArray record(const std::optional<OpenAction> &open)
{
    QByteArray bytes;
    if (open) {
        bytes = QByteArray::number(open->action.number) + ' ';
        bytes += beginning(open->what.simplified(), recordSize - sumSize - bytes.size());
    }
    bytes = bytes.leftJustified(recordSize - sumSize, ' ');
    return bytes + sumOf(bytes);
}

/// Nothing for a record that is not whole: its writer ended while it was written, before anybody was told.
std::optional<OpenAction> readRecord(const QUuid &writer, int descriptor)
{
    QByteArray bytes(recordSize, '\0');
    const bool isWhole = ::pread(descriptor, bytes.data(), recordSize, 0) == recordSize &&
                         sumOf(bytes.first(recordSize - sumSize)) == bytes.last(sumSize);
    if (!isWhole)
        return {};
    const QByteArray text = bytes.first(recordSize - sumSize).trimmed();
    const qsizetype blank = text.indexOf(' ');
    bool isNumber = false;
    const std::int64_t number = (blank < 0 ? text : text.first(blank)).toLongLong(&isNumber);
    if (!isNumber)
        return {};
    return OpenAction{{writer, number}, blank < 0 ? QString() : QString::fromUtf8(text.sliced(blank + 1))};
}

/// In place: neither the lock nor the room on the disk is given up.
Result<void, QString> writeRecord(int descriptor, const QByteArray &bytes)
{
    if (::lseek(descriptor, 0, SEEK_SET) != 0)
        return systemReason();
    return writeToDisk(descriptor, bytes);
}

/// A file that is locked before others can see it under its name.
Result<int, QString> makeLocked(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const QByteArray newName = name + ".new";
    const int descriptor = ::open(newName.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, privateFileMode);
    if (descriptor < 0)
        return systemReason();
    Result<void, QString> made;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        made = systemReason();
    if (made)
        made = writeRecord(descriptor, record({}));
    if (made && ::rename(newName.constData(), name.constData()) != 0)
        made = systemReason();
    if (made)
        return descriptor;
    ::unlink(newName.constData());
    ::close(descriptor);
    return Unexpected(made.error());
}

/// The locked file's descriptor; empty when its program runs, or when another one has just dealt with it.
std::optional<int> lockLeft(const QString &file)
{
    const int descriptor = ::open(QFile::encodeName(file).constData(), O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return {};
    struct stat facts = {};
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode) &&
        facts.st_nlink > 0)
        return descriptor;
    ::close(descriptor);
    return {};
}

} // namespace

ActionFolder::ActionFolder(QString folder) : m_folder(std::move(folder)) {}

ActionFolder::~ActionFolder()
{
    for (const auto &[writer, descriptor] : m_descriptors)
        ::close(descriptor);
}

QString ActionFolder::fileOf(const QUuid &writer) const
{
    return m_folder + u'/' + writer.toString(QUuid::WithoutBraces) + suffix;
}

Result<void, QString> ActionFolder::enter(const QUuid &writer)
{
    m_writer = writer;
    if (const auto made = makePrivateFolder(m_folder); !made)
        return made;
    auto descriptor = makeLocked(fileOf(writer));
    if (!descriptor)
        return Unexpected(std::move(descriptor).error());
    m_descriptors[writer] = *descriptor;
    return syncFolder(m_folder);
}

std::vector<LeftWriter> ActionFolder::leftBehind(Left which)
{
    std::vector<LeftWriter> left;
    const QDir folder(m_folder);
    for (const QString &name : folder.entryList({u'*' + suffix}, QDir::Files | QDir::Hidden, QDir::Name)) {
        const QUuid writer(name.chopped(suffix.size()));
        if (writer.isNull() || m_descriptors.contains(writer))
            continue;
        const std::optional<int> descriptor = lockLeft(folder.filePath(name));
        if (!descriptor)
            continue;
        auto open = readRecord(writer, *descriptor);
        if (open && which == Left::WithoutOpen) {
            qCWarning(lcStore, "Left for the till or the office, which can tell what became of it: %ls",
                      qUtf16Printable(open->what));
            ::close(*descriptor);
            continue;
        }
        m_descriptors[writer] = *descriptor;
        left.push_back({writer, std::move(open)});
    }
    return left;
}

Result<void, QString> ActionFolder::keep(const OpenAction &open)
{
    // Once it is needed there may be room for what could not be made at the start.
    if (!m_descriptors.contains(m_writer)) {
        if (auto entered = enter(m_writer); !entered)
            return entered;
    }
    return writeRecord(m_descriptors.at(m_writer), record(open));
}

void ActionFolder::resolved()
{
    const auto own = m_descriptors.find(m_writer);
    if (own == m_descriptors.end())
        return;
    // Left as it was, it tells the next start something that is known by then.
    if (const auto written = writeRecord(own->second, record({})); !written)
        qCWarning(lcStore, "A write that is resolved stays noted as unknown: %ls", qUtf16Printable(written.error()));
}

void ActionFolder::leave(const QUuid &writer)
{
    const auto left = m_descriptors.find(writer);
    if (left == m_descriptors.end())
        return;
    ::unlink(QFile::encodeName(fileOf(writer)).constData()); // under the lock, so that nobody takes it over in between
    ::close(left->second);
    m_descriptors.erase(left);
}

} // namespace harrowby::postgres
