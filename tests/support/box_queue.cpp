// SPDX-License-Identifier: MIT
#include "tests/support/box_queue.h"

#include <QAbstractButton>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

QString oneBreak(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s);
}

QMessageBox::Icon iconOf(int style)
{
    switch (style & 0x70) {
    case box::Critical:
        return QMessageBox::Critical;
    case box::Question:
        return QMessageBox::Question;
    case box::Exclamation:
        return QMessageBox::Warning;
    case box::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

QMessageBox::StandardButtons buttonsOf(int style)
{
    switch (style & 0x0f) {
    case box::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case box::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    default:
        return QMessageBox::Ok;
    }
}

QMessageBox::StandardButton defaultOf(int style)
{
    if ((style & 0x0f) == box::OkOnly)
        return QMessageBox::Ok;
    return (style & box::SecondButtonDefault) != 0 ? QMessageBox::No : QMessageBox::Yes;
}

QMessageBox::StandardButton buttonFor(Answer answer)
{
    switch (answer) {
    case Answer::Yes:
        return QMessageBox::Yes;
    case Answer::No:
        return QMessageBox::No;
    case Answer::Cancel:
        return QMessageBox::Cancel;
    default:
        return QMessageBox::Ok;
    }
}

void press(QMessageBox &message, QMessageBox::StandardButton button)
{
    QTimer::singleShot(0, &message, [&message, button] {
        if (QAbstractButton *found = message.button(button))
            found->click();
        else
            message.reject();
    });
}

} // namespace

BoxQueue::BoxQueue(QtBoxes &boxes)
{
    boxes.setObserver([this](QDialog &dialog) { meet(dialog); });
}

void BoxQueue::expect(const QString &text, int style, Answer answer)
{
    expect(text, style, answer, {});
}

void BoxQueue::expect(const QString &text, int style, Answer answer, std::function<void()> meanwhile)
{
    Expected expected;
    expected.text = text;
    expected.style = style;
    expected.answer = answer;
    expected.meanwhile = std::move(meanwhile);
    m_expected.push_back(std::move(expected));
}

void BoxQueue::expectInput(const QString &prompt, const QString &title, const QString &initial,
                           const std::optional<QString> &answer)
{
    Expected expected;
    expected.isInput = true;
    expected.text = prompt;
    expected.title = title;
    expected.initial = initial;
    expected.typed = answer;
    m_expected.push_back(std::move(expected));
}

void BoxQueue::answerTheRest(std::function<Answer(const QString &)> answer)
{
    m_answerTheRest = std::move(answer);
}

QByteArray BoxQueue::problems() const
{
    QStringList all = m_problems;
    for (const Expected &missing : m_expected)
        all << u"never came: "_s + missing.text;
    return all.join(u"\n"_s).toUtf8();
}

void BoxQueue::meet(QDialog &dialog)
{
    if (auto *message = qobject_cast<QMessageBox *>(&dialog))
        meetMessage(*message);
    else if (auto *input = qobject_cast<QInputDialog *>(&dialog))
        meetInput(*input);
    else
        QTimer::singleShot(0, &dialog, &QDialog::reject);
}

void BoxQueue::meetMessage(QMessageBox &message)
{
    if (m_expected.empty() || m_expected.front().isInput) {
        if (m_answerTheRest) {
            press(message, buttonFor(m_answerTheRest(message.text())));
            return;
        }
        m_problems << u"unexpected: "_s + message.text();
        QTimer::singleShot(0, &message, &QDialog::reject);
        return;
    }
    const Expected expected = std::exchange(m_expected.front(), {});
    m_expected.pop_front();
    check(expected, message);
    if (expected.meanwhile)
        QTimer::singleShot(0, &message, expected.meanwhile);
    press(message, buttonFor(expected.answer));
}

void BoxQueue::meetInput(QInputDialog &input)
{
    if (m_expected.empty() || !m_expected.front().isInput) {
        if (!m_answerTheRest)
            m_problems << u"unexpected: "_s + input.labelText();
        QTimer::singleShot(0, &input, &QDialog::reject);
        return;
    }
    const Expected expected = std::exchange(m_expected.front(), {});
    m_expected.pop_front();
    check(oneBreak(input.labelText()) == oneBreak(expected.text), u"prompt: "_s + input.labelText());
    check(input.windowTitle() == expected.title, u"title: "_s + input.windowTitle());
    check(input.textValue() == expected.initial, u"initial text: "_s + input.textValue());
    if (!expected.typed) {
        QTimer::singleShot(0, &input, &QDialog::reject);
        return;
    }
    QTimer::singleShot(0, &input, [&input, text = *expected.typed] {
        input.setTextValue(text);
        input.accept();
    });
}

void BoxQueue::check(const Expected &expected, const QMessageBox &message)
{
    check(oneBreak(message.text()) == oneBreak(expected.text),
          u"text is \""_s + message.text() + u"\", expected \""_s + expected.text + u"\""_s);
    check(message.icon() == iconOf(expected.style), u"wrong icon: "_s + message.text());
    check(message.standardButtons() == buttonsOf(expected.style), u"wrong buttons: "_s + message.text());
    const QAbstractButton *defaultButton = message.defaultButton();
    check(defaultButton != nullptr && defaultButton == message.button(defaultOf(expected.style)),
          u"wrong default button: "_s + message.text());
    check(message.textFormat() == Qt::PlainText, u"not plain text: "_s + message.text());
}

void BoxQueue::check(bool right, const QString &problem)
{
    if (!right)
        m_problems << problem;
}

} // namespace harrowby::test
