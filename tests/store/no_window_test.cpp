// SPDX-License-Identifier: MIT
#include "store/recordset.h"
#include "store/statement_texts.h"

#include "tests/program/test_program.h"

#include <QFile>
#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

/// The rooms below the window must not link Qt Gui or Qt Widgets.
class TestNoWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadsNoWindowLibrary();
};

void TestNoWindow::loadsNoWindowLibrary()
{
    DbRecordset rows;
    rows.Open(statements::storeSettings(), nullptr);
    QCOMPARE(rows.RecordCount(), 0);

    QFile maps(u"/proc/self/maps"_s);
    QVERIFY(maps.open(QIODevice::ReadOnly));
    const QByteArray mapped = maps.readAll();
    QVERIFY(mapped.contains("libQt6Core"));
    for (const char *library : {"libQt6Gui", "libQt6Widgets", "libQt6PrintSupport", "libQt6Svg", "libQt6Sql"})
        QVERIFY2(!mapped.contains(library), library);
}

HARROWBY_CORE_TEST(no_window_test, TestNoWindow)
#include "no_window_test.moc"
