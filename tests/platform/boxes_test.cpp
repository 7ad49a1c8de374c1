// SPDX-License-Identifier: MIT
#include "platform/boxes.h"

#include "input/early_key_filter.h"
#include "tests/platform/shown_box.h"
#include "tests/program/test_program.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProxyStyle>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;

namespace {

/// Puts pictures on the buttons of boxes, as some desktops do.
class StyleWithIcons : public QProxyStyle
{
public:
    StyleWithIcons() : QProxyStyle(u"fusion"_s) {}
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override
    {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 1 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

QString cartList(int lines)
{
    QString text = u"Purchase these items?"_s;
    for (int i = 1; i <= lines; ++i)
        text += u"\r\n%1 x A%1  |  ITEM %1 = 100"_s.arg(i);
    return text;
}

} // namespace

class BoxesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void style_data();
    void style();
    void answers_data();
    void answers();
    void escape_data();
    void escape();
    void textIsPlain_data();
    void textIsPlain();
    void buttonsAreLargeEnoughForAFinger();
    void buttonsHaveNoIcons();
    void aLongListStaysOnTheScreen_data();
    void aLongListStaysOnTheScreen();
    void aShortTextKeepsItsLabel();
    void theParentMayGo();
    void aBoxInABox();

    void inputAnswersTheText();
    void inputCancelled();
    void inputSelectsTheInitialText();
    void inputTextIsPlain();
    void aLongPromptStaysOnTheScreen();
    void theParentOfAnInputMayGo();
};

void BoxesTest::style_data()
{
    using Buttons = QMessageBox::StandardButtons;
    QTest::addColumn<int>("style");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::addColumn<Buttons>("buttons");
    QTest::addColumn<QMessageBox::StandardButton>("preset");

    const Buttons ok = QMessageBox::Ok;
    const Buttons yesNo = QMessageBox::Yes | QMessageBox::No;
    QTest::newRow("0") << 0 << QMessageBox::NoIcon << ok << QMessageBox::Ok;
    QTest::newRow("16") << 16 << QMessageBox::Critical << ok << QMessageBox::Ok;
    QTest::newRow("35") << 35 << QMessageBox::Question << (yesNo | QMessageBox::Cancel) << QMessageBox::Yes;
    QTest::newRow("36") << 36 << QMessageBox::Question << yesNo << QMessageBox::Yes;
    QTest::newRow("48") << 48 << QMessageBox::Warning << ok << QMessageBox::Ok;
    QTest::newRow("64") << 64 << QMessageBox::Information << ok << QMessageBox::Ok;
    QTest::newRow("292") << 292 << QMessageBox::Question << yesNo << QMessageBox::No;
}

void BoxesTest::style()
{
    QFETCH(const int, style);
    QtBoxes boxes;
    bool seen = false;
    whenShown<QMessageBox>(boxes, [&seen](QMessageBox &box) {
        seen = true;
        QTEST(box.icon(), "icon");
        QTEST(box.standardButtons(), "buttons");
        QFETCH(const QMessageBox::StandardButton, preset);
        QCOMPARE(box.defaultButton(), qobject_cast<QPushButton *>(box.button(preset)));
        QCOMPARE(box.text(), u"Text"_s);
        QCOMPARE(box.windowTitle(), u"Title"_s);
        QVERIFY(box.isModal());
        QTest::keyClick(&box, Qt::Key_Return);
    });
    const Answer answer = boxes.message(nullptr, u"Text"_s, style, u"Title"_s);
    QVERIFY(seen);
    QFETCH(const QMessageBox::StandardButton, preset);
    const Answer expected = preset == QMessageBox::Ok    ? Answer::Ok
                            : preset == QMessageBox::Yes ? Answer::Yes
                                                         : Answer::No;
    QCOMPARE(answer, expected);
}

void BoxesTest::answers_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::addColumn<Answer>("answer");
    QTest::newRow("ok") << 64 << QMessageBox::Ok << Answer::Ok;
    QTest::newRow("yes") << 292 << QMessageBox::Yes << Answer::Yes;
    QTest::newRow("no") << 36 << QMessageBox::No << Answer::No;
    QTest::newRow("yes of three") << 35 << QMessageBox::Yes << Answer::Yes;
    QTest::newRow("no of three") << 35 << QMessageBox::No << Answer::No;
    QTest::newRow("cancel of three") << 35 << QMessageBox::Cancel << Answer::Cancel;
}

void BoxesTest::answers()
{
    QFETCH(const int, style);
    QtBoxes boxes;
    whenShown<QMessageBox>(boxes, [](QMessageBox &box) {
        QFETCH(const QMessageBox::StandardButton, button);
        QTest::mouseClick(box.button(button), Qt::LeftButton);
    });
    QTEST(boxes.message(nullptr, u"Text"_s, style, {}), "answer");
}

void BoxesTest::escape_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<Answer>("answer");
    QTest::newRow("ok only") << 48 << Answer::Ok;
    QTest::newRow("yes or no") << 36 << Answer::No;
    QTest::newRow("yes, no or cancel") << 35 << Answer::Cancel;
}

void BoxesTest::escape()
{
    QFETCH(const int, style);
    QtBoxes boxes;
    whenShown<QMessageBox>(boxes, [](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
    QTEST(boxes.message(nullptr, u"Text"_s, style, {}), "answer");
    whenShown<QMessageBox>(boxes, [](QMessageBox &box) { box.done(QDialog::Rejected); });
    QTEST(boxes.message(nullptr, u"Text"_s, style, {}), "answer");
}

void BoxesTest::textIsPlain_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("html") << u"<b>X</b>"_s << u"<b>X</b>"_s;
    QTest::newRow("ampersand") << u"M & M and &Y"_s << u"M & M and &Y"_s;
    QTest::newRow("line breaks") << u"a\r\n\r\nb\nc"_s << u"a\n\nb\nc"_s;
    QTest::newRow("emoji") << u"\U0001F6D2 \u05e9\u05dc\u05d5\u05dd"_s << u"\U0001F6D2 \u05e9\u05dc\u05d5\u05dd"_s;
    QTest::newRow("empty") << u""_s << u""_s;
}

void BoxesTest::textIsPlain()
{
    QFETCH(const QString, text);
    QtBoxes boxes;
    whenShown<QMessageBox>(boxes, [](QMessageBox &box) {
        QTEST(box.text(), "shown");
        QCOMPARE(box.textFormat(), Qt::PlainText);
        auto *const label = box.findChild<QLabel *>(u"qt_msgbox_label"_s);
        QVERIFY(label && !label->buddy());
        QCOMPARE(box.windowTitle(), QString());
        box.accept();
    });
    boxes.message(nullptr, text, box::Information, {});
}

void BoxesTest::buttonsAreLargeEnoughForAFinger()
{
    QtBoxes boxes;
    whenShown<QMessageBox>(boxes, [](QMessageBox &box) {
        const auto buttons = box.buttons();
        QCOMPARE(buttons.size(), 3);
        for (const QAbstractButton *const button : buttons)
            QVERIFY(button->height() >= 44 && button->width() >= 44);
        box.reject();
    });
    boxes.message(nullptr, u"Text"_s, box::AskOrCancel, {});
}

void BoxesTest::buttonsHaveNoIcons()
{
    QApplication::setStyle(new StyleWithIcons);
    QtBoxes boxes;
    int seen = 0;
    const auto look = [&seen](const QDialog &box) {
        for (const auto *const button : box.findChildren<QAbstractButton *>()) {
            ++seen;
            QVERIFY2(button->icon().isNull(), qPrintable(button->text()));
        }
    };
    whenShown<QMessageBox>(boxes, [look](QMessageBox &box) {
        look(box);
        box.reject();
    });
    boxes.message(nullptr, u"Text"_s, box::AskOrCancel, {});
    whenShown<QInputDialog>(boxes, [look](QInputDialog &box) {
        look(box);
        box.reject();
    });
    boxes.input(nullptr, u"Text"_s, {}, {});
    QCOMPARE(seen, 5);
    QApplication::setStyle(u"fusion"_s);
}

void BoxesTest::aLongListStaysOnTheScreen_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("50 lines") << cartList(50);
    QTest::newRow("5000 lines") << cartList(5000);
    QTest::newRow("one endless word") << QString(10'000, u'W');
    QTest::newRow("many words") << u"word "_s.repeated(10'000);
}

void BoxesTest::aLongListStaysOnTheScreen()
{
    QFETCH(const QString, text);
    QtBoxes boxes;
    whenShown<QMessageBox>(boxes, [&text](QMessageBox &box) {
        const QSize screen = box.screen()->availableSize();
        QVERIFY2(box.height() <= screen.height(), qPrintable(QString::number(box.height())));
        QVERIFY2(box.width() <= screen.width(), qPrintable(QString::number(box.width())));
        const QString shown = QString(text).replace(u"\r\n"_s, u"\n"_s);
        QCOMPARE(box.text(), shown);
        auto *const view = box.findChild<QPlainTextEdit *>();
        QVERIFY(view && view->isVisible() && view->isReadOnly());
        QCOMPARE(view->toPlainText(), shown);
        QVERIFY(view->height() > 100 && view->width() > 300);
        for (const QAbstractButton *const button : box.buttons())
            QVERIFY(button->isVisible() && box.rect().contains(button->geometry().center()));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    QCOMPARE(boxes.message(nullptr, text, box::Ask, {}), Answer::Yes);
}

void BoxesTest::aShortTextKeepsItsLabel()
{
    QtBoxes boxes;
    whenShown<QMessageBox>(boxes, [](QMessageBox &box) {
        QVERIFY(!box.findChild<QPlainTextEdit *>());
        QVERIFY(box.findChild<QLabel *>(u"qt_msgbox_label"_s)->isVisible());
        box.accept();
    });
    boxes.message(nullptr, cartList(5), box::Ask, {});
}

void BoxesTest::theParentMayGo()
{
    QtBoxes boxes;
    auto parent = std::make_unique<QWidget>();
    whenShown<QMessageBox>(boxes, [&parent](QMessageBox &) { parent.reset(); });
    QCOMPARE(boxes.message(parent.get(), u"Text"_s, box::Ask, {}), Answer::No);

    parent = std::make_unique<QWidget>();
    boxes.setObserver([&parent](QDialog &) { parent.reset(); });
    QCOMPARE(boxes.message(parent.get(), u"Text"_s, box::AskOrCancel, {}), Answer::Cancel);
}

void BoxesTest::aBoxInABox()
{
    QtBoxes boxes;
    Answer inner = Answer::Cancel;
    boxes.setObserver([&](QDialog &outerBox) {
        QTimer::singleShot(0, &outerBox, [&] {
            boxes.setObserver([](QDialog &box) { QTimer::singleShot(0, &box, &QDialog::accept); });
            inner = boxes.message(&outerBox, u"Inner"_s, box::OkOnly, {});
            (void)QTest::qWaitFor([&] { return EarlyKeyFilter::acceptsKeys(outerBox); });
            QTest::keyClick(&outerBox, Qt::Key_Escape);
        });
    });
    QCOMPARE(boxes.message(nullptr, u"Outer"_s, box::Ask, {}), Answer::No);
    QCOMPARE(inner, Answer::Ok);
}

void BoxesTest::inputAnswersTheText()
{
    QtBoxes boxes;
    whenShown<QInputDialog>(boxes, [](QInputDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), u"Title"_s);
        QCOMPARE(dialog.labelText(), u"New price\nof M & M"_s);
        dialog.findChild<QLineEdit *>()->setText(u" 12.50 "_s);
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    QCOMPARE(boxes.input(nullptr, u"New price\r\nof M & M"_s, u"Title"_s, u"10"_s), u" 12.50 "_s);
}

void BoxesTest::inputCancelled()
{
    QtBoxes boxes;
    whenShown<QInputDialog>(boxes, [](QInputDialog &dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QCOMPARE(boxes.input(nullptr, u"Prompt"_s, {}, u"10"_s), QString());
}

void BoxesTest::inputSelectsTheInitialText()
{
    QtBoxes boxes;
    whenShown<QInputDialog>(boxes, [](QInputDialog &dialog) {
        auto *const line = dialog.findChild<QLineEdit *>();
        QCOMPARE(line->selectedText(), u"10 & 20"_s);
        QVERIFY(line->height() >= 44);
        QCOMPARE(line->accessibleName(), u"Prompt"_s);
        for (const QAbstractButton *const button : dialog.findChildren<QAbstractButton *>())
            QVERIFY(button->height() >= 44);
        dialog.accept();
    });
    QCOMPARE(boxes.input(nullptr, u"Prompt"_s, {}, u"10 & 20"_s), u"10 & 20"_s);
}

void BoxesTest::inputTextIsPlain()
{
    QtBoxes boxes;
    whenShown<QInputDialog>(boxes, [](QInputDialog &dialog) {
        auto *const label = dialog.findChild<QLabel *>();
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QVERIFY(!label->buddy());
        QCOMPARE(label->text(), u"<b>X</b> &M"_s);
        dialog.reject();
    });
    QCOMPARE(boxes.input(nullptr, u"<b>X</b> &M"_s, {}, {}), QString());
}

void BoxesTest::aLongPromptStaysOnTheScreen()
{
    QtBoxes boxes;
    const QString prompt = u"Price of "_s + QString(10'000, u'W');
    whenShown<QInputDialog>(boxes, [&prompt](QInputDialog &dialog) {
        const QSize screen = dialog.screen()->availableSize();
        QVERIFY(dialog.width() <= screen.width() && dialog.height() <= screen.height());
        QCOMPARE(dialog.labelText(), prompt);
        auto *const view = dialog.findChild<QPlainTextEdit *>();
        QVERIFY(view && view->isVisible());
        QCOMPARE(dialog.focusWidget(), dialog.findChild<QLineEdit *>());
        dialog.accept();
    });
    QCOMPARE(boxes.input(nullptr, prompt, {}, u"7"_s), u"7"_s);
}

void BoxesTest::theParentOfAnInputMayGo()
{
    QtBoxes boxes;
    auto parent = std::make_unique<QWidget>();
    whenShown<QInputDialog>(boxes, [&parent](QInputDialog &) { parent.reset(); });
    QCOMPARE(boxes.input(parent.get(), u"Prompt"_s, {}, u"10"_s), QString());
}

HARROWBY_TEST(boxes_test, BoxesTest)
#include "boxes_test.moc"
