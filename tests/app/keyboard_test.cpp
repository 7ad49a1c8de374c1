// SPDX-License-Identifier: MIT
#include "app/keyboard/above_keyboard.h"
#include "app/keyboard/keyboard_room.h"
#include "app/keyboard/touch_keyboard.h"

#include "tests/program/test_program.h"

#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

class KeyboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void frame_data();
    void frame();
    void lift_data();
    void lift();
    void shift_data();
    void shift();
    void everyPartIsLookedFor();
    void missingKeyboardChangesNothing();
    void whatTakesText();
    void contentsOfAFullWindowAreShifted();
    void shiftOutlivesALayout();
    void panelInNoLayoutIsShiftedAlone();
    void dialogIsMovedAndPutBack();
    void entryInAnotherWindowFreesTheFirst();
};

void KeyboardTest::frame_data()
{
    QTest::addColumn<QRect>("told");
    QTest::addColumn<QRect>("whole");
    const QRect window(172, 167, 660, 354);
    QTest::newRow("known") << QRect(171, 147, 662, 379) << QRect(171, 147, 662, 379);
    QTest::newRow("none") << window << window;
    QTest::newRow("asked for while it was made") << QRect(172, 167, 1, 1) << window;
}

void KeyboardTest::frame()
{
    QFETCH(QRect, told);
    QTEST(wholeFrame(told, QRect(172, 167, 660, 354)), "whole");
}

void KeyboardTest::lift_data()
{
    QTest::addColumn<QRect>("frame");
    QTest::addColumn<int>("lift");
    QTest::newRow("stands above already") << QRect(0, 100, 400, 300) << 0;
    QTest::newRow("just touches") << QRect(0, 140, 400, 300) << 0;
    QTest::newRow("covered by a pixel") << QRect(0, 141, 400, 300) << 1;
    QTest::newRow("covered") << QRect(0, 400, 400, 300) << 260;
    QTest::newRow("too high for the rest") << QRect(0, 60, 400, 600) << 40;
    QTest::newRow("no room above") << QRect(0, 20, 400, 600) << 0;
    QTest::newRow("above the screen") << QRect(0, -50, 400, 600) << 0;
}

void KeyboardTest::lift()
{
    QFETCH(QRect, frame);
    QTEST(windowLift(frame, 20, 440), "lift");
}

void KeyboardTest::shift_data()
{
    using Rects = QList<QRect>;
    QTest::addColumn<Rects>("around");
    QTest::addColumn<int>("now");
    QTest::addColumn<int>("shift");
    // The window begins at 20, the keyboard at 440; 8 stay free on both sides and 28 above the entry.
    const QRect whole(0, 20, 1000, 740);
    QTest::newRow("nothing") << Rects{} << 0 << 0;
    QTest::newRow("panel is seen") << Rects{{300, 200, 300, 44}, {280, 100, 340, 280}} << 0 << 0;
    QTest::newRow("panel is covered") << Rects{{300, 300, 300, 44}, {280, 250, 340, 280}} << 0 << 98;
    QTest::newRow("a shift that serves stays") << Rects{{300, 300, 300, 44}, {280, 250, 340, 280}} << 150 << 150;
    QTest::newRow("a shift too far") << Rects{{300, 300, 300, 44}, {280, 250, 340, 280}} << 300 << 98;
    QTest::newRow("form that does not fit: as far as the entry") << Rects{{300, 300, 300, 44}, whole} << 0 << 244;
    QTest::newRow("form that does not fit: as far as its end") << Rects{{300, 600, 300, 44}, whole} << 0 << 328;
    QTest::newRow("entry at the top") << Rects{{300, 30, 300, 44}, whole} << 0 << 0;
    QTest::newRow("entry that does not fit") << Rects{{300, 100, 300, 500}} << 0 << 44;
}

void KeyboardTest::shift()
{
    QFETCH(QList<QRect>, around);
    QFETCH(int, now);
    QTEST(contentShift(around, 20, 440, now), "shift");
}

void KeyboardTest::everyPartIsLookedFor()
{
    QTemporaryDir plugins;
    QTemporaryDir qml;
    const QStringList all = missingKeyboardParts({plugins.path()}, {qml.path()});
    QVERIFY(all.size() > 5);
    QVERIFY(all.constFirst().contains(u"qtvirtualkeyboard"_s));
    QVERIFY(all.contains(u"the QML module QtQuick.Layouts"_s));
    const auto make = [](const QString &path) {
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    };
    make(plugins.filePath(u"platforminputcontexts/libqtvirtualkeyboardplugin.so"_s));
    QCOMPARE(missingKeyboardParts({u"/nowhere"_s, plugins.path()}, {qml.path()}).size(), all.size() - 1);
    for (QString module : all.mid(1))
        make(qml.path() + u'/' + module.remove(u"the QML module "_s).replace(u'.', u'/') + u"/qmldir"_s);
    QCOMPARE(missingKeyboardParts({plugins.path()}, {u"/nowhere"_s, qml.path()}), QStringList());
}

void KeyboardTest::missingKeyboardChangesNothing()
{
    const QByteArray before = qgetenv("QT_IM_MODULE");
    const QStringList folders = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths({});
    const auto chosen = chooseTouchKeyboard();
    QCoreApplication::setLibraryPaths(folders);
    QVERIFY(!chosen);
    const QString &said = chosen.error();
    QVERIFY(said.contains(u"not installed"_s) && said.contains(u"goes on without it"_s));
    QCOMPARE(qgetenv("QT_IM_MODULE"), before);
}

void KeyboardTest::whatTakesText()
{
    QLineEdit line;
    QVERIFY(takesText(line));
    line.setEchoMode(QLineEdit::Password);
    QVERIFY(takesText(line));
    line.setReadOnly(true);
    QVERIFY(!takesText(line));
    QLineEdit disabled;
    disabled.setEnabled(false);
    QVERIFY(!takesText(disabled));
    QComboBox list;
    QVERIFY(!takesText(list));
    list.setEditable(true);
    QVERIFY(takesText(list));
    QPlainTextEdit log;
    QVERIFY(takesText(log));
    log.setReadOnly(true);
    QVERIFY(!takesText(log));
    QVERIFY(!takesText(QPushButton()));
}

void KeyboardTest::contentsOfAFullWindowAreShifted()
{
    QMainWindow window;
    auto *whole = new QWidget;
    auto *rows = new QVBoxLayout(whole);
    rows->addStretch(1);
    auto *entry = new QLineEdit(whole);
    rows->addWidget(entry);
    window.setCentralWidget(whole);
    window.showMaximized();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QPoint home = whole->pos();
    const QRect screen = window.screen()->geometry();
    const QRect keyboard(0, screen.height() / 2, screen.width(), screen.height() / 2);
    KeyboardRoom room;
    room.makeRoom(*entry, keyboard);
    QVERIFY(entry->mapToGlobal(entry->rect().bottomLeft()).y() < keyboard.top());
    QVERIFY(entry->mapToGlobal(QPoint()).y() >= 0);
    const QPoint shifted = whole->pos();
    room.makeRoom(*entry, keyboard);
    QCOMPARE(whole->pos(), shifted);
    room.giveBack();
    QCOMPARE(whole->pos(), home);
}

void KeyboardTest::shiftOutlivesALayout()
{
    QMainWindow window;
    auto *whole = new QWidget;
    auto *rows = new QVBoxLayout(whole);
    rows->addStretch(1);
    auto *entry = new QLineEdit(whole);
    rows->addWidget(entry);
    window.setCentralWidget(whole);
    window.showMaximized();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QPoint home = whole->pos();
    const QRect screen = window.screen()->geometry();
    KeyboardRoom room;
    room.makeRoom(*entry, QRect(0, screen.height() / 2, screen.width(), screen.height() / 2));
    const QPoint shifted = whole->pos();
    QVERIFY(shifted.y() < home.y());
    window.layout()->invalidate();
    window.layout()->activate();
    whole->move(home); // as a layout would
    QCOMPARE(whole->pos(), shifted);
    room.giveBack();
    QCOMPARE(whole->pos(), home);
}

void KeyboardTest::panelInNoLayoutIsShiftedAlone()
{
    QMainWindow window;
    auto *whole = new QWidget;
    window.setCentralWidget(whole);
    auto *panel = new QFrame(&window);
    auto *entry = new QLineEdit(panel);
    window.showMaximized();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    panel->setGeometry(100, window.height() - 200, 300, 150);
    panel->show();
    const QPoint home = panel->pos();
    KeyboardRoom room;
    room.makeRoom(*entry, QRect(0, window.height() / 2, window.width(), window.height() / 2));
    QVERIFY(panel->mapToGlobal(panel->rect().bottomLeft()).y() < window.height() / 2);
    QCOMPARE(whole->pos(), QPoint(0, 0));
    panel->move(home + QPoint(10, -5)); // the layout has placed it again meanwhile
    QVERIFY(panel->y() < home.y() - 50);
    room.giveBack();
    QCOMPARE(panel->pos(), home + QPoint(10, -5));
}

void KeyboardTest::dialogIsMovedAndPutBack()
{
    QDialog dialog;
    auto *rows = new QVBoxLayout(&dialog);
    auto *entry = new QLineEdit(&dialog);
    rows->addWidget(entry);
    dialog.resize(300, 200);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    dialog.move(100, screen.height() - 250);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QPoint home = dialog.pos();
    KeyboardRoom room;
    room.makeRoom(*entry, QRect(0, screen.height() / 2, screen.width(), screen.height() / 2));
    QVERIFY(dialog.frameGeometry().bottom() < screen.height() / 2);
    QCOMPARE(dialog.x(), home.x());
    room.giveBack();
    QCOMPARE(dialog.pos(), home);
    room.makeRoom(*entry, QRect(0, screen.height() / 2, screen.width(), screen.height() / 2));
    dialog.move(50, 60); // moved by the user
    room.giveBack();
    QCOMPARE(dialog.pos(), QPoint(50, 60));
}

void KeyboardTest::entryInAnotherWindowFreesTheFirst()
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QRect keyboard(0, screen.height() / 2, screen.width(), screen.height() / 2);
    KeyboardRoom room;
    QDialog first;
    QDialog second;
    QPoint home;
    for (QDialog *dialog : {&first, &second}) {
        auto *rows = new QVBoxLayout(dialog);
        rows->addWidget(new QLineEdit(dialog));
        dialog->move(100, screen.height() - 150);
        dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        home = dialog->pos();
        room.makeRoom(*dialog->findChild<QLineEdit *>(), keyboard);
        QVERIFY(dialog->y() < home.y());
    }
    QCOMPARE(first.pos(), home);
    {
        QDialog gone;
        auto *entry = new QLineEdit(&gone);
        gone.show();
        room.makeRoom(*entry, keyboard);
    }
    room.giveBack(); // the window has been destroyed
}

HARROWBY_TEST(app_keyboard_test, KeyboardTest)
#include "keyboard_test.moc"
