// SPDX-License-Identifier: MIT
#include "plugins/report/report_dialog.h"
#include "plugins/report/sales_chart.h"
#include "tables/output_bar.h"
#include "tables/table_view.h"
#include "tests/plugins/report/shop.h"
#include "tests/program/test_program.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <QtCharts/QBarCategoryAxis>

#include <sqlite3.h>

using namespace harrowby;
using namespace harrowby::report;
using namespace harrowby::report::test;
using namespace Qt::StringLiterals;

/// The real window, headless, as a person uses it.
class DialogTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Shop> m_shop;
    QDate m_today{2026, 11, 18};
    bool m_email = true;
    bool m_canSave = true;

    std::unique_ptr<ReportDialog> open(const QString &user = u"MANAGER"_s, bool canSettings = true)
    {
        ReportFrame frame;
        frame.user = user;
        frame.canSettings = canSettings;
        frame.today = [this] { return m_today; };
        frame.emailReport = [this] { return m_email; };
        frame.saveEmailReport = [this](bool on) {
            m_email = m_canSave ? on : m_email;
            return m_canSave;
        };
        auto dialog = std::make_unique<ReportDialog>(m_shop->connection(), frame);
        dialog->show();
        settle(*dialog);
        return dialog;
    }

    static void settle(ReportDialog &dialog)
    {
        QTRY_VERIFY_WITH_TIMEOUT(!dialog.isReading(), 60'000);
        QCoreApplication::processEvents();
    }

    template <typename Control>
    static Control &part(const ReportDialog &dialog, const QString &name)
    {
        auto *found = dialog.findChild<Control *>(name);
        if (found == nullptr)
            qFatal("no %s", qPrintable(name));
        return *found;
    }

    static void choose(ReportDialog &dialog, const QString &box, const QString &entry)
    {
        part<QComboBox>(dialog, box).setCurrentText(entry);
        settle(dialog);
    }

    static QStringList rows(const ReportDialog &dialog)
    {
        const QAbstractItemModel &model = *dialog.table().model();
        QStringList lines;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < model.columnCount(); ++column)
                cells << model.index(row, column).data().toString();
            lines << cells.join(u'|');
        }
        return lines;
    }

    static QString message(const ReportDialog &dialog)
    {
        const auto &label = part<QLabel>(dialog, u"message"_s);
        return label.isVisible() ? label.text() : QString();
    }

private Q_SLOTS:
    void init()
    {
        m_shop = std::make_unique<Shop>();
        m_email = true;
        m_canSave = true;
        m_shop->sell(u"261118090000"_s, u"ANN"_s, 3, u"2 x A  |  PEN = 3.00"_s);
        m_shop->sell(u"261118100000"_s, u"BOB"_s, 4, u"1 x B  |  INK = 4.00"_s);
        m_shop->sell(u"261116100000"_s, u"BOB"_s, 9, u"1 x B  |  INK = 9.00"_s);
        m_shop->sell(u"261101100000"_s, u"ANN"_s, 1000, u"1 x C  |  TILL = 1,000.00"_s);
        m_shop->sell(u"261031100000"_s, u"ANN"_s, 50, u"rubbish"_s);
    }

    void opensWithThisMonthByDay()
    {
        const auto dialog = open();
        QCOMPARE(rows(*dialog), (QStringList{u"Sun 1 Nov 2026|1|1,000.00|1,000.00"_s, u"Mon 16 Nov 2026|1|9.00|9.00"_s,
                                             u"Wed 18 Nov 2026|2|7.00|3.50"_s}));
        QCOMPARE(part<QLabel>(*dialog, u"totals"_s).text(), u"Purchases: 4   Amount: 1,016.00   Average: 254.00"_s);
        QCOMPARE(dialog->chart().bars().bars.size(), static_cast<std::size_t>(30));
        QCOMPARE(message(*dialog), QString());
    }

    void periods_data()
    {
        QTest::addColumn<QString>("period");
        QTest::addColumn<QStringList>("days");
        QTest::newRow("today") << u"Today"_s << QStringList{u"Wed 18 Nov 2026|2|7.00|3.50"_s};
        QTest::newRow("week") << u"This week"_s
                              << QStringList{u"Mon 16 Nov 2026|1|9.00|9.00"_s, u"Wed 18 Nov 2026|2|7.00|3.50"_s};
    }

    void periods()
    {
        QFETCH(const QString, period);
        const auto dialog = open();
        choose(*dialog, u"period"_s, period);
        QTEST(rows(*dialog), "days");
    }

    void anyDays()
    {
        const auto dialog = open();
        part<QDateEdit>(*dialog, u"from"_s).setDate(QDate(2026, 10, 31));
        settle(*dialog);
        QCOMPARE(part<QComboBox>(*dialog, u"period"_s).currentText(), u"From - to"_s);
        QCOMPARE(rows(*dialog).size(), 4);
        part<QDateEdit>(*dialog, u"to"_s).setDate(QDate(2026, 10, 30)); // before "from", which is set to it
        settle(*dialog);
        QCOMPARE(part<QDateEdit>(*dialog, u"from"_s).date(), QDate(2026, 10, 30));
        QCOMPARE(message(*dialog), u"No sales: 30 Oct 2026."_s);
    }

    void groupings()
    {
        const auto dialog = open();
        choose(*dialog, u"grouping"_s, u"By seller"_s);
        QCOMPARE(rows(*dialog), (QStringList{u"ANN|2|1,003.00|501.50"_s, u"BOB|2|13.00|6.50"_s}));
        part<QDateEdit>(*dialog, u"from"_s).setDate(QDate(2026, 10, 1));
        choose(*dialog, u"grouping"_s, u"By item"_s);
        QCOMPARE(rows(*dialog), (QStringList{u"C|TILL|1|1,000.00|1"_s, u"|(unreadable)||50.00|1"_s,
                                             u"B|INK|2|13.00|2"_s, u"A|PEN|2|3.00|1"_s}));
        choose(*dialog, u"grouping"_s, u"By day"_s);
        QCOMPARE(rows(*dialog).size(), 4);
    }

    void withoutTheRightOnlyOnesOwn()
    {
        const auto dialog = open(u"BOB"_s, false);
        QCOMPARE(rows(*dialog), (QStringList{u"Mon 16 Nov 2026|1|9.00|9.00"_s, u"Wed 18 Nov 2026|1|4.00|4.00"_s}));
        choose(*dialog, u"grouping"_s, u"By seller"_s);
        QCOMPARE(rows(*dialog), QStringList{u"BOB|2|13.00|6.50"_s});
        choose(*dialog, u"grouping"_s, u"By item"_s);
        QCOMPARE(rows(*dialog), QStringList{u"B|INK|2|13.00|2"_s});
        QCOMPARE(part<QLabel>(*dialog, u"status"_s).text(), u"Only your own sales are shown (BOB)."_s);
        for (const QString &statement : m_shop->connection()->statements)
            QVERIFY2(statement.contains(u"Users = 'BOB'"_s), qPrintable(statement));
        QVERIFY(!part<QCheckBox>(*dialog, u"emailReport"_s).isEnabled());
    }

    void theAdministratorSeesAll()
    {
        const auto dialog = open(u"ADMINISTRATOR"_s, false);
        QCOMPARE(rows(*dialog).size(), 3);
        QVERIFY(part<QCheckBox>(*dialog, u"emailReport"_s).isEnabled());
    }

    void anEmptyPeriodSaysSo()
    {
        m_today = QDate(2026, 12, 24);
        const auto dialog = open();
        m_today = QDate(2026, 11, 18);
        QCOMPARE(message(*dialog), u"No sales: 1 Dec 2026 to 31 Dec 2026."_s);
        QVERIFY(!dialog->output().isEnabled());
        part<QAbstractButton>(*dialog, u"refresh"_s).click(); // a new day: the month is another one
        settle(*dialog);
        QCOMPARE(rows(*dialog).size(), 3);
        QVERIFY(dialog->output().isEnabled());
    }

    void aFailureSaysSo()
    {
        m_shop->connection()->fails = [](const QString &) { return true; };
        const auto dialog = open();
        QVERIFY(message(*dialog).startsWith(u"The sales could not be read."_s));
        QVERIFY(!dialog->output().isEnabled());
        m_shop->connection()->fails = {};
        part<QAbstractButton>(*dialog, u"refresh"_s).click();
        settle(*dialog);
        QCOMPARE(rows(*dialog).size(), 3);
    }

    void figuresSortAsFigures()
    {
        const auto dialog = open();
        dialog->table().sortByColumn(2, Qt::AscendingOrder);
        QCOMPARE(rows(*dialog).constFirst(), u"Wed 18 Nov 2026|2|7.00|3.50"_s);
        QCOMPARE(part<QComboBox>(*dialog, u"sorting"_s).currentText(), u"Amount, smallest first"_s);
        choose(*dialog, u"period"_s, u"This week"_s); // the order stays
        QCOMPARE(rows(*dialog).constFirst(), u"Wed 18 Nov 2026|2|7.00|3.50"_s);
    }

    void filesHoldWhatIsShown()
    {
        const QTemporaryDir folder;
        const auto dialog = open();
        dialog->table().sortByColumn(2, Qt::DescendingOrder);
        for (const QString &suffix : {u"csv"_s, u"pdf"_s}) {
            QString offered;
            dialog->output().setFileChooser([&](QWidget *, const QString &suggestion, const QString &) {
                offered = suggestion;
                return folder.filePath(u"sales."_s + suffix);
            });
            part<QAbstractButton>(*dialog, suffix == u"csv"_s ? u"saveCsv"_s : u"savePdf"_s).click();
            QVERIFY(offered.endsWith(u"/Sales 2026-11-01 to 2026-11-30 by day."_s + suffix));
            QFile file(folder.filePath(u"sales."_s + suffix));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            if (suffix == u"csv"_s)
                QVERIFY(bytes.startsWith("Day,Purchases,Amount,Average\r\n2026-11-01,1,1000.00,1000.00\r\n"));
            else
                QVERIFY(bytes.startsWith("%PDF") && bytes.size() > 10'000); // the plot is in it
        }
    }

    void theDailyMailIsSwitched()
    {
        const auto dialog = open();
        auto &box = part<QCheckBox>(*dialog, u"emailReport"_s);
        QVERIFY(box.isChecked());
        box.click();
        QVERIFY(!m_email);
        m_canSave = false;
        box.click();
        QVERIFY(!box.isChecked()); // shows what is saved
        QCOMPARE(part<QLabel>(*dialog, u"status"_s).text(), u"The setting could not be saved."_s);
    }

    void changesInTheMiddle()
    {
        m_shop->sellMany(20'000, 1'000, QDate(2026, 11, 1));
        const auto dialog = open();
        auto &grouping = part<QComboBox>(*dialog, u"grouping"_s);
        auto &period = part<QComboBox>(*dialog, u"period"_s);
        for (int i = 0; i < 60; ++i) {
            grouping.setCurrentIndex(i % 3);
            period.setCurrentIndex(i % 4);
            if (i % 7 == 0)
                dialog->table().sortByColumn(i % 4, Qt::AscendingOrder);
            QCoreApplication::processEvents();
        }
        period.setCurrentIndex(2);
        choose(*dialog, u"grouping"_s, u"By seller"_s);
        QCOMPARE(rows(*dialog).size(), 7);
    }

    void cancelled()
    {
        m_shop->sellMany(20'000, 1'000, QDate(2026, 11, 1));
        const auto dialog = open();
        part<QComboBox>(*dialog, u"grouping"_s).setCurrentText(u"By item"_s);
        QVERIFY(dialog->isReading());
        QCoreApplication::processEvents();
        part<QAbstractButton>(*dialog, u"cancel"_s).click();
        QVERIFY(!dialog->isReading());
        QVERIFY(message(*dialog).startsWith(u"Cancelled."_s));
        QVERIFY(sqlite3_next_stmt(m_shop->handle(), nullptr) == nullptr);
        part<QAbstractButton>(*dialog, u"refresh"_s).click();
        settle(*dialog);
        QCOMPARE(rows(*dialog).size(), 53); // 50 articles and the three of above
    }

    void closedInTheMiddle()
    {
        m_shop->sellMany(20'000, 1'000, QDate(2026, 11, 1));
        auto dialog = open();
        part<QComboBox>(*dialog, u"grouping"_s).setCurrentText(u"By item"_s);
        QCoreApplication::processEvents();
        dialog.reset();
        QCoreApplication::processEvents();
        QVERIFY(sqlite3_next_stmt(m_shop->handle(), nullptr) == nullptr);
    }

    void everythingIsLargeEnoughAndNamed()
    {
        const auto dialog = open();
        dialog->resize(1016, 700);
        QCoreApplication::processEvents();
        QCOMPARE(dialog->width(), 1016); // no control needs more width
        for (auto *button : dialog->findChildren<QAbstractButton *>()) {
            if (button->isVisible() && button->focusPolicy() != Qt::NoFocus)
                QVERIFY2(button->height() >= 44, qPrintable(button->text()));
        }
        for (auto *box : dialog->findChildren<QComboBox *>())
            QVERIFY2(box->height() >= 44 && !box->accessibleName().isEmpty(), qPrintable(box->objectName()));
        for (auto *day : dialog->findChildren<QDateEdit *>())
            QVERIFY2(day->height() >= 44 && !day->accessibleName().isEmpty(), qPrintable(day->objectName()));
    }

    void everythingIsReachedByKeys()
    {
        const auto dialog = open();
        QApplication::setActiveWindow(dialog.get());
        QSet<QString> reached;
        for (int press = 0; press < 40; ++press) {
            QTest::keyClick(dialog->focusWidget() != nullptr ? dialog->focusWidget() : dialog.get(), Qt::Key_Tab);
            if (dialog->focusWidget() != nullptr)
                reached << dialog->focusWidget()->objectName();
        }
        for (const QString &name : {u"period"_s, u"from"_s, u"to"_s, u"grouping"_s, u"sorting"_s, u"refresh"_s,
                                    u"sales"_s, u"emailReport"_s, u"print"_s, u"savePdf"_s, u"saveCsv"_s, u"close"_s})
            QVERIFY2(reached.contains(name), qPrintable(name));
    }

    void fitsEveryScreen_data()
    {
        QTest::addColumn<QSize>("size");
        for (const QSize size :
             {QSize(800, 576), QSize(1024, 576), QSize(768, 1342), QSize(1366, 744), QSize(1920, 1056)})
            QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }

    void fitsEveryScreen()
    {
        QFETCH(QSize, size);
        const auto dialog = open();
        dialog->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(dialog->size(), size);
        const QSize least = dialog->minimumSizeHint();
        QVERIFY2(least.width() <= size.width() && least.height() <= size.height(),
                 qPrintable(u"at least %1x%2"_s.arg(least.width()).arg(least.height())));
        for (const QString &name : {u"period"_s, u"from"_s, u"to"_s, u"grouping"_s, u"sorting"_s, u"refresh"_s,
                                    u"sales"_s, u"emailReport"_s, u"print"_s, u"savePdf"_s, u"saveCsv"_s, u"close"_s}) {
            const auto &control = part<QWidget>(*dialog, name);
            QVERIFY2(dialog->rect().contains(QRect(control.mapTo(dialog.get(), QPoint()), control.size())),
                     qPrintable(name));
            QVERIFY2(control.height() >= 44 && control.width() >= control.minimumSizeHint().width(), qPrintable(name));
        }
        const auto &from = part<QDateEdit>(*dialog, u"from"_s);
        QVERIFY(from.findChild<QLineEdit *>()->width() >= from.fontMetrics().horizontalAdvance(from.text()));
        QVERIFY(part<QTreeView>(*dialog, u"sales"_s).height() >= 3 * 44);
    }

    void labelsOfCrowdedBarsAreSmaller()
    {
        const auto dialog = open();
        const auto size = [&] {
            return dialog->chart().chart()->axes(Qt::Horizontal).constFirst()->labelsFont().pointSizeF();
        };
        dialog->resize(1366, 744);
        QCoreApplication::processEvents();
        const double usual = size();
        dialog->resize(800, 576);
        QCoreApplication::processEvents();
        QVERIFY(size() < usual && size() > 6);
        dialog->resize(768, 1342);
        QCoreApplication::processEvents();
        QVERIFY(size() < usual ||
                dynamic_cast<QBarCategoryAxis &>(*dialog->chart().chart()->axes(Qt::Horizontal).constFirst())
                        .labelsAngle() == -90);
    }

    void aDarkPaletteIsFollowed()
    {
        const auto dialog = open();
        const QPalette before = QApplication::palette();
        QPalette dark = before;
        dark.setColor(QPalette::Window, QColor(40, 44, 48));
        dark.setColor(QPalette::WindowText, QColor(236, 238, 240));
        dark.setColor(QPalette::Base, QColor(30, 33, 36));
        QApplication::setPalette(dark);
        QCoreApplication::processEvents();
        const QColor ground = dialog->chart().chart()->backgroundBrush().color();
        QApplication::setPalette(before);
        QVERIFY(ground.lightness() < 80);
        QCoreApplication::processEvents();
        QVERIFY(dialog->chart().chart()->backgroundBrush().color().lightness() > 200);
    }
};

HARROWBY_TEST(report_dialog_test, DialogTest)
#include "dialog_test.moc"
