// SPDX-License-Identifier: MIT
#include "tables/output_bar.h"

#include "tests/program/test_program.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace harrowby::tables;
using namespace Qt::StringLiterals;

class OutputBarTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    Table m_table;
    QString m_path;       ///< what the person chooses
    QString m_suggestion; ///< the path that was offered
    QString m_boxText;

    std::unique_ptr<OutputBar> bar()
    {
        auto made = std::make_unique<OutputBar>(
            OutputSource{[this]() -> const Table & { return m_table; }, {}, [] { return u"Sales a/b"_s; }});
        made->setFileChooser([this](QWidget *, const QString &suggestion, const QString &) {
            m_suggestion = suggestion;
            return m_path;
        });
        return made;
    }

    void press(OutputBar &bar, const QString &name)
    {
        m_boxText.clear();
        QTimer::singleShot(0, this, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                m_boxText = box->text();
                box->accept();
            }
        });
        bar.findChild<QPushButton *>(name)->click();
        QCoreApplication::processEvents();
    }

    QByteArray saved() const
    {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private Q_SLOTS:
    void init()
    {
        m_table.title = u"Sales"_s;
        m_table.columns = {{u"Seller"_s, Kind::Text, true}};
        m_table.rows = {{u"A"_s}};
    }

    void savesCsv()
    {
        const auto output = bar();
        const QSignalSpy done(output.get(), &OutputBar::done);
        m_path = m_folder.filePath(u"list.csv"_s);
        press(*output, u"saveCsv"_s);
        QCOMPARE(saved(), QByteArray("Seller\r\nA\r\n"));
        QVERIFY(m_suggestion.endsWith(u"/Sales a-b.csv"_s));
        QCOMPARE(done.size(), 1);
        QVERIFY(done.at(0).at(0).toString().contains(m_path));
        QCOMPARE(m_boxText, QString());
    }

    void savesPdf()
    {
        const auto output = bar();
        m_path = m_folder.filePath(u"list.pdf"_s);
        press(*output, u"savePdf"_s);
        QVERIFY(saved().startsWith("%PDF"));
        QVERIFY(saved().contains("%%EOF"));
    }

    void noNameSavesNothing()
    {
        const auto output = bar();
        const QSignalSpy done(output.get(), &OutputBar::done);
        m_path.clear();
        press(*output, u"saveCsv"_s);
        QCOMPARE(done.size(), 0);
        QCOMPARE(m_boxText, QString());
    }

    void aFailedSaveIsTold_data()
    {
        QTest::addColumn<QString>("button");
        QTest::newRow("csv") << u"saveCsv"_s;
        QTest::newRow("pdf") << u"savePdf"_s;
    }

    void aFailedSaveIsTold()
    {
        QFETCH(const QString, button);
        const auto output = bar();
        const QSignalSpy done(output.get(), &OutputBar::done);
        m_path = m_folder.filePath(u"no such folder/list"_s);
        press(*output, button);
        QVERIFY2(m_boxText.startsWith(u"It has not been saved as\n"_s + QDir::toNativeSeparators(m_path)),
                 qPrintable(m_boxText));
        QCOMPARE(done.size(), 0);
    }

    void savesWhereTheFileDialogSays()
    {
        OutputBar output(OutputSource{[this]() -> const Table & { return m_table; }, {}, [] { return u"Sales"_s; }});
        const QSignalSpy done(&output, &OutputBar::done);
        m_path = m_folder.filePath(u"chosen.csv"_s);
        QString offered;
        QTimer::singleShot(0, &output, [&] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog != nullptr);
            offered = QFileInfo(dialog->selectedFiles().value(0)).fileName();
            dialog->setDirectory(m_folder.path());
            dialog->selectFile(u"chosen"_s); // the ending is added
            static_cast<QDialog *>(dialog)->accept();
        });
        output.findChild<QPushButton *>(u"saveCsv"_s)->click();
        QCOMPARE(offered, u"Sales.csv"_s);
        QCOMPARE(saved(), QByteArray("Seller\r\nA\r\n"));
        QCOMPARE(done.size(), 1);
    }

    void printsWhenTheDialogIsAccepted_data()
    {
        QTest::addColumn<bool>("accepted");
        QTest::newRow("accepted") << true;
        QTest::newRow("cancelled") << false;
    }

    void printsWhenTheDialogIsAccepted()
    {
        QFETCH(const bool, accepted);
        qputenv("CUPS_SERVER", "127.0.0.1:1"); // nobody prints there
        const auto output = bar();
        const QSignalSpy done(output.get(), &OutputBar::done);
        m_path = m_folder.filePath(accepted ? u"paper.pdf"_s : u"no paper.pdf"_s);
        QTimer::singleShot(0, output.get(), [&] {
            auto *dialog = qobject_cast<QPrintDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog != nullptr);
            auto *printers = dialog->findChild<QComboBox *>(u"printers"_s);
            printers->setCurrentIndex(printers->findText(u"PDF"_s, Qt::MatchContains));
            dialog->findChild<QLineEdit *>(u"filename"_s)->setText(m_path);
            accepted ? static_cast<QDialog *>(dialog)->accept() : dialog->reject();
        });
        press(*output, u"print"_s);
        QCOMPARE(saved().startsWith("%PDF"), accepted);
        QCOMPARE(done.size(), accepted ? 1 : 0);
        QCOMPARE(m_boxText, QString());
    }

    void theBarMayBeGoneWhenTheNameIsThere()
    {
        auto output = bar();
        m_path = m_folder.filePath(u"late.csv"_s);
        output->setFileChooser([&output, this](QWidget *, const QString &, const QString &) {
            output.release()->deleteLater();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            return m_path;
        });
        auto *button = output->findChild<QPushButton *>(u"saveCsv"_s);
        QTimer::singleShot(0, button, [button] { button->click(); });
        QCoreApplication::processEvents();
        QTRY_VERIFY(!output);
    }
};

HARROWBY_TEST(tables_output_bar_test, OutputBarTest)
#include "output_bar_test.moc"
