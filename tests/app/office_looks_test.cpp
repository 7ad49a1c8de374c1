// SPDX-License-Identifier: MIT
#include "app/records/deeds.h"
#include "app/records/sqlite_records.h"
#include "tests/app/office_desk.h"
#include "tests/program/test_program.h"
#include "tests/support/readable_texts.h"

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;
using harrowby::test::darkPalette;
using harrowby::test::lightPalette;
using harrowby::test::unreadableTexts;

/// The office's pages and their dialogs in a light and a dark palette: what they say can be read.
class OfficeLooksTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_programs = qgetenv("PATH"); }
    void cleanupTestCase();
    void everythingCanBeRead_data() { palettes(); }
    void everythingCanBeRead();

private:
    static void palettes();
    void open(const QPalette &palette);
    static void check(QDialog &dialog);
    void checkDialogOf(const QString &page, const char *button);

    QByteArray m_programs;
};

void OfficeLooksTest::cleanupTestCase()
{
    qputenv("PATH", m_programs);
    QApplication::setPalette(lightPalette());
}

void OfficeLooksTest::palettes()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << lightPalette();
    QTest::newRow("dark") << darkPalette();
}

/// With something in the lists, and no program that the nightly backup could set up.
void OfficeLooksTest::open(const QPalette &palette)
{
    qputenv("PATH", m_folder->path().toLocal8Bit());
    Records &records = *m_shop->records();
    QVERIFY(!Deeds(records, officePlace).add({deed::rightsChanged, u"ADMINISTRATOR"_s, u"ANNA was made manager."_s}));
    m_window.reset();
    QApplication::setPalette(palette);
    m_window = makeWindow(store());
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void OfficeLooksTest::everythingCanBeRead()
{
    QFETCH(QPalette, palette);
    open(palette);
    for (const QString &page : m_window->pageTitles()) {
        showPage(page);
        QCoreApplication::processEvents();
        const QStringList unreadable = unreadableTexts(*m_window);
        QVERIFY2(unreadable.isEmpty(), qPrintable(page + u'\n' + unreadable.join(u'\n')));
    }
    checkDialogOf(u"Users"_s, "addUser");
    checkDialogOf(u"Codes"_s, "inStoreCodes");
    checkDialogOf(u"Labels"_s, "addLabelItems");
    checkDialogOf(u"Labels"_s, "adjustLabels");
    checkDialogOf(u"Backup"_s, "restoreBackup");
    checkDialogOf(u"Backup"_s, "nightlyBackup");
}

void OfficeLooksTest::check(QDialog &dialog)
{
    QCoreApplication::processEvents();
    const QStringList unreadable = unreadableTexts(dialog);
    QVERIFY2(unreadable.isEmpty(), qPrintable(unreadable.join(u'\n')));
    int controls = 0;
    for (QWidget *widget : dialog.findChildren<QWidget *>()) {
        const bool isPart =
            widget->parentWidget()->inherits("QComboBox") || widget->parentWidget()->inherits("QAbstractSpinBox") ||
            widget->parentWidget()->inherits("QAbstractItemView") || widget->parentWidget()->inherits("QLineEdit");
        if (!widget->isVisible() || isPart ||
            !(widget->inherits("QAbstractButton") || widget->inherits("QLineEdit") || widget->inherits("QComboBox") ||
              widget->inherits("QAbstractSpinBox")))
            continue;
        ++controls;
        const QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(widget);
        QVERIFY2(!spoken->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        QVERIFY2(widget->height() >= 44 && widget->width() >= 44, qPrintable(widget->objectName()));
        // What steps a figure up and down does what the arrow keys do in its entry.
        const bool isStep = widget->objectName().endsWith(u"Less") || widget->objectName().endsWith(u"More");
        QVERIFY2(isStep || (widget->focusPolicy() & Qt::TabFocus) != 0, qPrintable(widget->objectName()));
    }
    QVERIFY(controls > 1);
}

void OfficeLooksTest::checkDialogOf(const QString &page, const char *button)
{
    showPage(page);
    int seen = 0;
    inNextDialog([&](QDialog &dialog) {
        ++seen;
        check(dialog);
        dialog.reject();
    });
    press(button);
    QVERIFY2(seen == 1, button);
}

HARROWBY_TEST(app_office_looks_test, OfficeLooksTest)
#include "office_looks_test.moc"
