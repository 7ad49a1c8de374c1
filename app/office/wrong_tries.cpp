// SPDX-License-Identifier: MIT
#include "app/office/wrong_tries.h"

#include "basic/logging.h"
#include "basic/private_files.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace harrowby::app {

namespace {

constexpr int triesWithoutPause = 2;
constexpr std::chrono::milliseconds firstPause = 1s;
constexpr int mostDoublings = 4; ///< to 16 s

constexpr int mostCounted = 1000;
constexpr qint64 longestFile = 64; // bytes

/// Count and milliseconds since 1970; nothing for a file that holds anything else.
QList<qint64> numbersIn(const QString &path)
{
    QFile file(path);
    if (!openOrdinaryFile(file, QIODevice::ReadOnly))
        return {};
    QList<qint64> numbers;
    for (const QByteArray &part : file.read(longestFile).trimmed().split(' ')) {
        bool isNumber = false;
        numbers << part.toLongLong(&isNumber);
        if (!isNumber)
            return {};
    }
    return numbers.size() == 2 ? numbers : QList<qint64>();
}

} // namespace

std::chrono::milliseconds pauseAfter(int wrongTries)
{
    const int paused = wrongTries - triesWithoutPause;
    return paused > 0 ? firstPause * (1 << std::min(paused - 1, mostDoublings)) : 0ms;
}

void WrongTries::add(const QDateTime &now)
{
    load();
    m_count = std::min(m_count + 1, mostCounted);
    m_last = now.toMSecsSinceEpoch();
    save();
}

void WrongTries::forget()
{
    m_count = 0;
    if (!m_file.isEmpty())
        QFile::remove(m_file);
}

void WrongTries::takeBack()
{
    load();
    if (m_count <= 1)
        return forget();
    --m_count;
    save();
}

std::chrono::milliseconds WrongTries::pause(const QDateTime &now)
{
    load();
    const auto whole = pauseAfter(m_count);
    if (whole == 0ms)
        return whole;
    const qint64 time = now.toMSecsSinceEpoch();
    if (m_last > time) { // the clock was set back
        m_last = time;
        save();
    }
    if (m_last <= time - whole.count())
        return 0ms;
    return whole - std::chrono::milliseconds(time - m_last);
}

void WrongTries::load()
{
    if (m_file.isEmpty() || !QFile::exists(m_file))
        return;
    const QList<qint64> numbers = numbersIn(m_file);
    if (numbers.isEmpty() || numbers.at(0) < 0) {
        qCWarning(lcSettings).noquote() << m_file << "does not hold what it should, and is not used.";
        return;
    }
    m_count = static_cast<int>(std::min<qint64>(numbers.at(0), mostCounted));
    m_last = numbers.at(1);
}

void WrongTries::save() const
{
    if (m_file.isEmpty())
        return;
    const QByteArray text = QByteArray::number(m_count) + ' ' + QByteArray::number(m_last) + '\n';
    if (const auto written = writePrivateFile(m_file, text); !written)
        qCWarning(lcSettings).noquote() << "Cannot write" << m_file << "-" << written.error();
}

} // namespace harrowby::app
