// SPDX-License-Identifier: MIT
#include "app/backup/damaged_files.h"
#include "app/shop/file_facts.h"

#include <QFile>
#include <QtEndian>

#include <bit>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype logHeadBytes = 32;
constexpr qsizetype frameHeadBytes = 24;
constexpr qsizetype saltBytes = 8;
constexpr quint32 logMagic = 0x377f0682; // and one more where the sums are made of big-endian words

quint32 word(QByteArrayView bytes, qsizetype at)
{
    return qFromBigEndian<quint32>(bytes.data() + at);
}

/// SQLite's running sum over the log.
struct LogSum
{
    quint32 first = 0;
    quint32 second = 0;
    bool isBigEndian = false;

    void add(QByteArrayView bytes)
    {
        for (qsizetype at = 0; at + 8 <= bytes.size(); at += 8) {
            first += number(bytes, at) + second;
            second += number(bytes, at + 4) + first;
        }
    }
    [[nodiscard]] quint32 number(QByteArrayView bytes, qsizetype at) const
    {
        return isBigEndian ? word(bytes, at) : qFromLittleEndian<quint32>(bytes.data() + at);
    }
    [[nodiscard]] bool isAt(QByteArrayView bytes, qsizetype at) const
    {
        return first == word(bytes, at) && second == word(bytes, at + 4);
    }
};

/// The size of a page; 0 when SQLite would not read this log.
qsizetype readHead(QByteArrayView head, LogSum &sum)
{
    const quint32 magic = word(head, 0);
    const quint32 page = word(head, 8);
    sum.isBigEndian = magic == logMagic + 1;
    sum.add(head.first(logHeadBytes - 8));
    const bool isRead = (magic & ~1U) == logMagic && std::has_single_bit(page) && page >= 512 && page <= 65536;
    return isRead && sum.isAt(head, logHeadBytes - 8) ? page : 0;
}

} // namespace

bool logIsDamaged(const QString &store)
{
    QFile file(logFileOf(store));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(logHeadBytes);
    if (head.size() < logHeadBytes || file.size() < logHeadBytes + frameHeadBytes)
        return false; // no row was in it
    LogSum sum;
    const qsizetype page = readHead(head, sum);
    if (page == 0)
        return true;
    const QByteArray salt = head.mid(16, saltBytes);
    bool isRead = true;
    for (;;) {
        const QByteArray frame = file.read(frameHeadBytes + page);
        if (frame.size() < frameHeadBytes + page)
            return false;
        // Of other salt are the frames of the time before the log was begun anew.
        const bool isOfThisLog = frame.mid(8, saltBytes) == salt;
        if (isRead) {
            sum.add(QByteArrayView(frame).first(8));
            sum.add(QByteArrayView(frame).sliced(frameHeadBytes));
            isRead = isOfThisLog && sum.isAt(frame, 16);
        }
        if (!isRead && isOfThisLog)
            return true;
    }
}

} // namespace harrowby::app
