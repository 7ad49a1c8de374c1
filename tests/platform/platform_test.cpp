// SPDX-License-Identifier: MIT
#include "platform/platform.h"

#include "tests/platform/isolated_home.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;

class PlatformTest : public QObject
{
    Q_OBJECT

private:
    IsolatedHome m_home;

private Q_SLOTS:
    void theNativeOneIsComplete()
    {
        const Platform &platform = Platform::native();
        QVERIFY(dynamic_cast<QtBoxes *>(platform.boxes.get()));
        QVERIFY(dynamic_cast<IniSettings *>(platform.settings.get()));
        QVERIFY(dynamic_cast<SystemClock *>(platform.clock.get()));
        QVERIFY(platform.objects);
        QCOMPARE(platform.printers->deviceNames(), {u"Receipt file (PDF)"_s});
        QCOMPARE(platform.printers->current()->deviceName(), u"Receipt file (PDF)"_s);
    }

    void isCreatedOnce() { QCOMPARE(&Platform::native(), &Platform::native()); }
};

HARROWBY_TEST(platform_test, PlatformTest)
#include "platform_test.moc"
