// SPDX-License-Identifier: MIT
#include "app/backup/damaged_files.h"

#include "app/backup/backup_names.h"
#include "app/backup/backup_place.h"
#include "app/shop/file_facts.h"
#include "app/shop/file_naming.h"
#include "app/shop/workshop.h"
#include "app/work/work_step.h"
#include "basic/private_files.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qint64 pieceBytes = qint64{1} << 20;
const QString allEndings[] = {QString(), logEnding, journalEnding};

using Advance = std::function<bool(qint64 bytes)>;

DamagedFiles::End problemOf(const QFile &file)
{
    return {false, u"\"%1\": %2"_s.arg(file.fileName(), file.errorString())};
}

DamagedFiles::End copyFile(const QString &from, const QString &to, const Advance &advance)
{
    if (const auto made = makePrivateFile(to); !made)
        return {false, made.error()};
    QFile source(from);
    QFile target(to);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return problemOf(source);
    if (!target.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return problemOf(target);
    for (;;) {
        const QByteArray piece = source.read(pieceBytes);
        if (piece.isEmpty())
            break;
        if (target.write(piece) != piece.size())
            return problemOf(target);
        if (!advance(piece.size()))
            return {true, {}};
    }
    if (source.error() != QFile::NoError)
        return problemOf(source);
    if (::fsync(target.handle()) != 0)
        return {false, u"The disk does not take the copy."_s};
    ::posix_fadvise(target.handle(), 0, 0, POSIX_FADV_DONTNEED); // what is compared comes from the disk
    return {};
}

DamagedFiles::End compareFile(const QString &from, const QString &to, const Advance &advance)
{
    QFile source(from);
    QFile target(to);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return problemOf(source);
    if (!target.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return problemOf(target);
    for (;;) {
        const QByteArray piece = source.read(pieceBytes);
        if (piece != target.read(pieceBytes))
            return {false, u"The copy is not what was written; its disk may be failing."_s};
        if (piece.isEmpty())
            return {};
        if (!advance(piece.size()))
            return {true, {}};
    }
}

bool isFree(const QString &name)
{
    return std::ranges::none_of(allEndings, [&](const QString &ending) { return nameIsTaken(name + ending); });
}

QString freeName(const QString &wanted)
{
    QString name = wanted;
    for (int number = 2; number <= mostNumber && !isFree(name); ++number)
        name = numberedName(wanted, number);
    return name;
}

} // namespace

bool isDamage(ProblemKind kind)
{
    return kind == ProblemKind::Damaged || kind == ProblemKind::NoDatabase || kind == ProblemKind::Empty;
}

DamagedFiles::DamagedFiles(const QString &store) : m_store(realTarget(store)) {}

DamagedFiles::~DamagedFiles() = default;

DamagedFiles::Facts DamagedFiles::factsNow() const
{
    Facts facts;
    for (const QString &ending : allEndings)
        facts << factsOf(QFile::encodeName(m_store + ending));
    return facts;
}

QString DamagedFiles::copyOf(const QString &ending) const
{
    return m_workshop->filePath(u"kept"_s + ending);
}

QStringList DamagedFiles::endings() const
{
    QStringList found;
    for (qsizetype i = 0; i < m_facts.size(); ++i) {
        if (m_facts.at(i))
            found << allEndings[i];
    }
    return found;
}

DamagedFiles::End DamagedFiles::copy(const StoreHold &, const QString &target, const std::function<bool(int)> &goesOn)
{
    m_target = freeName(target);
    if (const auto place = checkBackupPlace(m_store, m_target); !place)
        return {false, place.error()};
    const QString folder = QFileInfo(m_target).absolutePath();
    removeLeftWorkshops(folder);
    m_workshop = std::make_unique<Workshop>(folder, Workshop::Purpose::Backup);
    if (!m_workshop->isValid())
        return {false, u"Nothing can be written there: %1"_s.arg(m_workshop->errorString())};
    m_facts = factsNow();
    qint64 all = 0;
    for (const auto &facts : std::as_const(m_facts))
        all += facts ? 2 * facts->size : 0; // copied and compared
    qint64 done = 0;
    const Advance advance = [&](qint64 bytes) { return goesOn(percentOf(done += bytes, all)); };
    for (const auto work : {copyFile, compareFile}) {
        for (const QString &ending : endings()) {
            if (End end = work(m_store + ending, copyOf(ending), advance); end.stopped || !end.problem.isEmpty())
                return end;
        }
    }
    m_isCopied = true;
    return {};
}

DamagedFiles::End DamagedFiles::giveNames()
{
    const QString target = freeName(m_target);
    QStringList order = endings();
    std::ranges::reverse(order); // where the store file has its name, the others have theirs
    for (const QString &ending : std::as_const(order)) {
        if (const Naming named = nameNewFileAnywhere(copyOf(ending), target + ending); !named)
            return {false, QString::fromLocal8Bit(named.error().message())};
        m_names.prepend(target + ending);
    }
    syncFolder(QFileInfo(target).absolutePath());
    return {};
}

} // namespace harrowby::app
