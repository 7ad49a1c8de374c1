// SPDX-License-Identifier: MIT
#include "platform/receipt_folder.h"

#include "platform/failure_telling.h"

#include "tests/platform/isolated_home.h"
#include "tests/platform/log_capture.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;

namespace {

const QDateTime soldAt(QDate(2026, 11, 20), QTime(14, 7, 9));

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Lets every write beyond this many bytes of a file fail, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit{bytes, m_previous.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &m_previous); }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    rlimit m_previous{};
};

} // namespace

class ReceiptFolderTest : public QObject
{
    Q_OBJECT

private:
    IsolatedHome m_home;

private Q_SLOTS:
    void init() { m_home.clear(); }

    void theNameTellsTheTime()
    {
        const QString path = keepReceipt("%PDF", soldAt);
        QCOMPARE(path, m_home.receipts() + u"/Receipt 2026-11-20 14-07-09.pdf"_s);
        QCOMPARE(contents(path), "%PDF"_ba);
        QCOMPARE(m_home.receiptFiles(), {path});
    }

    void noFileIsOverwritten()
    {
        QStringList expected;
        for (int i = 1; i <= 3; ++i) {
            const QString path = keepReceipt(QByteArray::number(i), soldAt);
            QCOMPARE(contents(path), QByteArray::number(i));
            expected += path;
        }
        QCOMPARE(QFileInfo(expected.at(1)).fileName(), u"Receipt 2026-11-20 14-07-09 (2).pdf"_s);
        QCOMPARE(contents(expected.at(0)), "1"_ba);
        QCOMPARE(m_home.receiptFiles().size(), 3);
    }

    void aDocumentsFolderOfAnotherName()
    {
        QVERIFY(QDir().mkpath(m_home.path(u".config"_s)));
        QFile folders(m_home.path(u".config/user-dirs.dirs"_s));
        QVERIFY(folders.open(QIODevice::WriteOnly));
        folders.write("XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
        folders.close();
        QCOMPARE(keepReceipt("x", soldAt),
                 m_home.path(u"Dokumente/Harrowby Receipts/Receipt 2026-11-20 14-07-09.pdf"_s));
    }

    void withoutDocumentsItGoesToTheDataFolder()
    {
        const LogCapture log;
        QFile blocker(m_home.path(u"Documents"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        const QString path = keepReceipt("%PDF", soldAt);
        QCOMPARE(path, m_home.path(u".local/share/Harrowby/Harrowby Receipts/Receipt 2026-11-20 14-07-09.pdf"_s));
        QCOMPARE(contents(path), "%PDF"_ba);
        QVERIFY(log.hasLine({u"harrowby.print"_s, m_home.receipts()}));
    }

    void receiptAndFolderAreTheOwnersAlone()
    {
        const auto mode = [](const QString &path) {
            struct stat facts = {};
            return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? static_cast<int>(facts.st_mode & 0777)
                                                                            : -1;
        };
        QCOMPARE(mode(keepReceipt("%PDF", soldAt)), 0600);
        QCOMPARE(mode(m_home.receipts()), 0700);
    }

    void aFullDiskIsLoggedAndLeavesNoHalfReceipt()
    {
        const LogCapture log;
        QList<FileFailure> failures;
        FailureTelling::setHandler([&](const FileFailure &failure) { failures << failure; });
        QString path;
        {
            const FullDisk full(1000);
            path = keepReceipt(QByteArray(5'000, 'x'), soldAt);
        }
        QCOMPARE(failures.size(), 1);
        QVERIFY(failures.constFirst().kind == FileFailure::Kind::Receipt);
        QCOMPARE(failures.constFirst().path, m_home.receipts());
        QCOMPARE(failures.constFirst().reason, u"File too large"_s);
        QVERIFY(!keepReceipt("x", soldAt).isEmpty());
        QVERIFY(failures.constLast().isOver);
        FailureTelling::setHandler({});
        QVERIFY(QFile::remove(m_home.receiptFiles().constFirst()));
        QCOMPARE(path, QString());
        QCOMPARE(m_home.receiptFiles(), QStringList());
        for (const QString &folder : receiptFolders())
            QVERIFY(log.hasLine({u"harrowby.print"_s, u"Receipt 2026-11-20 14-07-09"_s, folder}));
    }
};

HARROWBY_CORE_TEST(receipt_folder_test, ReceiptFolderTest)
#include "receipt_folder_test.moc"
