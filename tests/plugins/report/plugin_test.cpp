// SPDX-License-Identifier: MIT
#include "platform/object_registry.h"
#include "tests/plugins/report/shop.h"
#include "ui/dashboard/report_call.h"

#include "platform/saved_settings.h"

#include <harrowby/report_component.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <stdexcept>

using namespace harrowby;
using namespace harrowby::report::test;
using namespace Qt::StringLiterals;

/// The plugin as the till loads it, called as the till calls it.
class PluginTest : public QObject
{
    Q_OBJECT

private:
    ObjectRegistry m_registry;
    Shop m_shop;
    QString m_title;
    bool m_canSettings = true;
    QString m_user = u"MANAGER"_s;

    ReportArguments arguments()
    {
        return {m_shop.connection(), {}, true, &m_title, true, true, &m_canSettings, &m_user};
    }

    /// Runs as soon as the report is there.
    void whenOpen(const std::function<void(QDialog &)> &act)
    {
        auto *timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [timer, act] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                timer->deleteLater();
                act(*dialog);
            }
        });
        timer->start(0);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        m_registry.setPluginFolders({QFileInfo(QStringLiteral(REPORT_PLUGIN)).path()});
        QVERIFY(!IniSettings().path().isEmpty());
        QFile::remove(IniSettings().path());
    }

    void cleanupTestCase() { QFile::remove(IniSettings().path()); }

    void isFoundByItsIdentifier()
    {
        const auto report = m_registry.create(ReportClassId);
        QVERIFY(report);
        QVERIFY(report->metaObject()->indexOfMethod(AccountPreviewSignature) >= 0);
        QVERIFY(m_registry.create(QString(ReportClassId).toUpper()));
    }

    void isModalAndReturnsWhenItIsClosed()
    {
        const auto report = m_registry.create(ReportClassId);
        QWidget owner;
        owner.show();
        QApplication::setActiveWindow(&owner);
        bool seen = false;
        whenOpen([&](QDialog &dialog) {
            seen = dialog.isModal() && dialog.parentWidget() == &owner && dialog.windowTitle() == u"Sales Report"_s;
            dialog.close();
        });
        ReportArguments given = arguments();
        QVERIFY(callAccountPreview(*report, given));
        QVERIFY(seen);
        QCOMPARE(given.connection, std::shared_ptr<DbConnection>(m_shop.connection()));
        QCOMPARE(m_user, u"MANAGER"_s);
        QVERIFY(m_canSettings);
    }

    void itsOwnerMayGoFirst()
    {
        const auto report = m_registry.create(ReportClassId);
        auto *owner = new QWidget;
        owner->show();
        QApplication::setActiveWindow(owner);
        whenOpen([owner](QDialog &) { delete owner; });
        ReportArguments given = arguments();
        QVERIFY(callAccountPreview(*report, given));
    }

    void switchesTheSavedSetting()
    {
        const auto report = m_registry.create(ReportClassId);
        for (const QString &expected : {u"0"_s, u"1"_s}) {
            whenOpen([](QDialog &dialog) {
                dialog.findChild<QCheckBox *>(u"emailReport"_s)->click();
                dialog.close();
            });
            ReportArguments given = arguments();
            QVERIFY(callAccountPreview(*report, given));
            QCOMPARE(IniSettings().get(u"Option"_s, u"Emailreport"_s, u"none"_s), expected);
        }
    }

    void withoutAConnectionItThrows()
    {
        const auto report = m_registry.create(ReportClassId);
        ReportArguments given = arguments();
        given.connection.reset();
        QVERIFY_THROWS_EXCEPTION(std::exception, static_cast<void>(callAccountPreview(*report, given)));
    }
};

QTEST_MAIN(PluginTest)
#include "plugin_test.moc"
