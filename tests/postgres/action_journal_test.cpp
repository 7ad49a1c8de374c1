// SPDX-License-Identifier: MIT
#include "postgres/action_journal.h"
#include "postgres/shop_memory.h"

#include "tests/program/test_program.h"
#include "tests/support/failing_disk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <functional>
#include <memory>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace Qt::StringLiterals;
namespace FailingDisk = harrowby::test::FailingDisk;

/// Each ActionFolder stands for one program: its locks are its own.
class ActionJournalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAnOpenWriteForTheNextStart();
    void letsRunningProgramsBe();
    void handsEachWriterToOneProgram();
    void leavesOpenWritesToThoseThatTell();
    void forgetsWhatIsResolved();
    void takesAHalfWrittenRecordForNone();
    void cutsLongWords();
    void keepsItsSize();
    void isForItsOwnerAlone();
    void saysWhyItCannot();
    void outlastsThisMachine();
    void aTimelineOutlastsThisMachine();
    void makesUpForAFileThatCouldNotBeMade();
    void passesOverWhatIsNotItsOwn();

private:
    [[nodiscard]] QString folder() const { return m_home->filePath(u"state/actions"_s); }
    using Act = std::function<Result<void, QString>(ActionFolder &)>;
    [[nodiscard]] QStringList stepsOnDisk(bool hasEntered, const Act &act);
    [[nodiscard]] QStringList files() const { return QDir(folder()).entryList(QDir::Files); }
    [[nodiscard]] QString file() const { return folder() + u'/' + files().value(0); }

    std::unique_ptr<QTemporaryDir> m_home;

private Q_SLOTS:
    void init() { m_home = std::make_unique<QTemporaryDir>(); }
};

namespace {

const QUuid writer = QUuid::createUuid();

OpenAction openWrite(const QString &what = u"UPDATE StockList"_s)
{
    return {{writer, 17}, what};
}

/// A program that is killed after `open`.
void runAndDie(const QString &folder, const std::optional<OpenAction> &open)
{
    ActionFolder journal(folder);
    QVERIFY(journal.enter(writer));
    if (open)
        QVERIFY(journal.keep(*open));
}

} // namespace

void ActionJournalTest::keepsAnOpenWriteForTheNextStart()
{
    runAndDie(folder(), openWrite());
    ActionFolder next(folder());
    const std::vector<LeftWriter> left = next.leftBehind(Left::All);
    QCOMPARE(left.size(), std::size_t(1));
    QCOMPARE(left[0].writer, writer);
    QVERIFY(left[0].open);
    QCOMPARE(left[0].open->action.number, 17);
    QCOMPARE(left[0].open->action.writer, writer);
    QCOMPARE(left[0].open->what, u"UPDATE StockList"_s);
    next.leave(writer);
    QVERIFY(files().isEmpty());
}

void ActionJournalTest::letsRunningProgramsBe()
{
    ActionFolder till(folder());
    QVERIFY(till.enter(writer));
    QVERIFY(till.leftBehind(Left::All).empty());
    ActionFolder office(folder());
    QVERIFY(office.enter(QUuid::createUuid()));
    QVERIFY(office.leftBehind(Left::All).empty());
    QVERIFY(till.keep(openWrite()));
    QVERIFY(office.leftBehind(Left::All).empty());
    till.leave(writer);
    QCOMPARE(files().size(), 1);
}

void ActionJournalTest::handsEachWriterToOneProgram()
{
    runAndDie(folder(), openWrite());
    auto first = std::make_unique<ActionFolder>(folder());
    QCOMPARE(first->leftBehind(Left::All).size(), std::size_t(1));
    ActionFolder second(folder());
    QVERIFY(second.leftBehind(Left::All).empty());
    first.reset(); // killed before it resolved anything
    QCOMPARE(second.leftBehind(Left::All).size(), std::size_t(1));
}

/// Nor does a program without anybody to tell keep others from them.
void ActionJournalTest::leavesOpenWritesToThoseThatTell()
{
    runAndDie(folder(), openWrite());
    ActionFolder nightJob(folder());
    QVERIFY(nightJob.leftBehind(Left::WithoutOpen).empty());
    ActionFolder till(folder());
    QCOMPARE(till.leftBehind(Left::All).size(), std::size_t(1));
    till.leave(writer);
    runAndDie(folder(), {});
    QCOMPARE(nightJob.leftBehind(Left::WithoutOpen).size(), std::size_t(1));
}

void ActionJournalTest::forgetsWhatIsResolved()
{
    {
        ActionFolder journal(folder());
        QVERIFY(journal.enter(writer));
        QVERIFY(journal.keep(openWrite()));
        journal.resolved();
    }
    const std::vector<LeftWriter> left = ActionFolder(folder()).leftBehind(Left::All);
    QCOMPARE(left.size(), std::size_t(1));
    QVERIFY(!left[0].open);
}

void ActionJournalTest::takesAHalfWrittenRecordForNone()
{
    runAndDie(folder(), openWrite());
    QFile half(file());
    QVERIFY(half.open(QIODevice::ReadWrite));
    half.seek(20);
    half.write("x");
    half.close();
    std::vector<LeftWriter> left = ActionFolder(folder()).leftBehind(Left::All);
    QCOMPARE(left.size(), std::size_t(1));
    QVERIFY(!left[0].open);
    QVERIFY(half.resize(100));
    left = ActionFolder(folder()).leftBehind(Left::All);
    QCOMPARE(left.size(), std::size_t(1));
    QVERIFY(!left[0].open);
}

void ActionJournalTest::cutsLongWords()
{
    for (const char32_t letter : {U'x', U'ü', U'\U0001F600'}) {
        const QString words = QString::fromUcs4(&letter, 1).repeated(1000);
        runAndDie(folder(), openWrite(words));
        ActionFolder next(folder());
        const std::vector<LeftWriter> left = next.leftBehind(Left::All);
        QVERIFY(left.at(0).open);
        QVERIFY(words.startsWith(left[0].open->what));
        QVERIFY(left[0].open->what.toUtf8().size() > 400);
        next.leave(writer);
    }
    runAndDie(folder(), openWrite(u"  two\nlines "_s));
    QCOMPARE(ActionFolder(folder()).leftBehind(Left::All).at(0).open->what, u"two lines"_s);
}

void ActionJournalTest::keepsItsSize()
{
    ActionFolder journal(folder());
    QVERIFY(journal.enter(writer));
    const qint64 size = QFileInfo(file()).size();
    QVERIFY(size > 0);
    QVERIFY(journal.keep(openWrite()));
    QCOMPARE(QFileInfo(file()).size(), size);
    journal.resolved();
    QCOMPARE(QFileInfo(file()).size(), size);
}

void ActionJournalTest::isForItsOwnerAlone()
{
    ActionFolder journal(folder());
    QVERIFY(journal.enter(writer));
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QVERIFY(!(QFile::permissions(file()) & others));
    QVERIFY(!(QFile::permissions(folder()) & others));
}

void ActionJournalTest::saysWhyItCannot()
{
    QFile inTheWay(m_home->filePath(u"state"_s));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    ActionFolder journal(folder());
    const auto entered = journal.enter(writer);
    QVERIFY(!entered);
    QVERIFY(!entered.error().isEmpty());
    QVERIFY(!journal.keep(openWrite()));
    journal.resolved();
    journal.leave(writer);
    QVERIFY(journal.leftBehind(Left::All).empty());
}

/// What it does on the disk, in its order: each step in turn is the one that fails.
QStringList ActionJournalTest::stepsOnDisk(bool hasEntered, const Act &act)
{
    QStringList steps;
    bool hasFailed = true;
    for (int step = 1; hasFailed; ++step) {
        init();
        FailingDisk::mount(QFileInfo(m_home->path()).path());
        ActionFolder journal(folder());
        if (hasEntered && !journal.enter(writer))
            return {};
        FailingDisk::failAt(step, FailingDisk::Mode::Once, EIO);
        const bool isTold = !act(journal);
        hasFailed = FailingDisk::failures() > 0;
        if (hasFailed)
            steps << FailingDisk::firstFailure().replace(m_home->path(), u"HOME"_s) + (isTold ? u""_s : u" untold"_s);
    }
    FailingDisk::failAt(0, FailingDisk::Mode::Once, 0);
    return steps;
}

/// A file has its bytes before it has its name, and each folder above it its entry.
void ActionJournalTest::outlastsThisMachine()
{
    const QString name = u"HOME/state/actions/%1.writer"_s.arg(writer.toString(QUuid::WithoutBraces));
    const QStringList entered{
        u"mkdir HOME/state"_s,         u"open HOME untold"_s,          u"sync HOME untold"_s,
        u"mkdir HOME/state/actions"_s, u"open HOME/state untold"_s,    u"sync HOME/state untold"_s,
        u"open "_s + name + u".new"_s, u"write "_s + name + u".new"_s, u"sync "_s + name + u".new"_s,
        u"rename "_s + name,           u"open HOME/state/actions"_s,   u"sync HOME/state/actions"_s};
    QCOMPARE(stepsOnDisk(false, [](ActionFolder &journal) { return journal.enter(writer); }), entered);
    const QStringList kept{u"write "_s + name, u"sync "_s + name};
    QCOMPARE(stepsOnDisk(true, [](ActionFolder &journal) { return journal.keep(openWrite()); }), kept);
}

/// The new note is on the disk before the old one goes: whenever the machine dies, one of them is there.
void ActionJournalTest::aTimelineOutlastsThisMachine()
{
    const QUuid store = QUuid::createUuid();
    QStringList steps;
    QStringList notes;
    for (int step = 1; notes.isEmpty(); ++step) {
        init();
        FailingDisk::mount(QFileInfo(m_home->path()).path());
        const QString state = m_home->filePath(u"state"_s);
        noteTimeline(store, 3, state);
        FailingDisk::failAt(step, FailingDisk::Mode::Once, EIO);
        noteTimeline(store, 5, state);
        const QDir folder(folderOf(store, state));
        if (FailingDisk::failures() == 0) {
            notes = folder.entryList(QDir::Files);
            continue;
        }
        QVERIFY(folder.exists(u"timeline-3"_s));
        steps << FailingDisk::firstFailure().replace(folder.path(), u"STORE"_s);
    }
    FailingDisk::failAt(0, FailingDisk::Mode::Once, 0);
    QCOMPARE(steps, (QStringList{u"open STORE/timeline-5"_s, u"open STORE"_s, u"sync STORE"_s}));
    QCOMPARE(notes, QStringList{u"timeline-5"_s});
}

/// A disk that was full when the program started.
void ActionJournalTest::makesUpForAFileThatCouldNotBeMade()
{
    QFile inTheWay(m_home->filePath(u"state"_s));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    {
        ActionFolder journal(folder());
        QVERIFY(!journal.enter(writer));
        QVERIFY(inTheWay.remove());
        QVERIFY(journal.keep(openWrite()));
        QVERIFY(ActionFolder(folder()).leftBehind(Left::All).empty());
    }
    const std::vector<LeftWriter> left = ActionFolder(folder()).leftBehind(Left::All);
    QCOMPARE(left.size(), std::size_t(1));
    QVERIFY(left[0].open);
    QCOMPARE(left[0].open->action, openWrite().action);
}

void ActionJournalTest::passesOverWhatIsNotItsOwn()
{
    QVERIFY(QDir().mkpath(folder() + u"/00000000-0000-0000-0000-000000000001.writer"_s));
    QVERIFY(QFile::link(u"/etc/passwd"_s, folder() + u"/00000000-0000-0000-0000-000000000002.writer"_s));
    QFile other(folder() + u"/notes.writer"_s);
    QVERIFY(other.open(QIODevice::WriteOnly));
    QVERIFY(ActionFolder(folder()).leftBehind(Left::All).empty());
}

HARROWBY_CORE_TEST(action_journal_test, ActionJournalTest)
#include "action_journal_test.moc"
