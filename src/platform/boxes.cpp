// SPDX-License-Identifier: MIT
#include "platform/boxes.h"

#include "basic/text.h"
#include "input/early_key_filter.h"
#include "input/touch_target.h"
#include "platform/long_text.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

using Button = QMessageBox::StandardButton;

constexpr int buttonBits = 0x0f;
constexpr int iconBits = 0x70;
constexpr int defaultBits = 0x300;

// Also where no style sheet of the application applies to the box.
constexpr QSize touchSize(88, touchHeight);
constexpr QSize inputSize(320, touchHeight);

/// A dialog that its parent may destroy while it runs.
template <class Dialog>
class OwnedDialog
{
public:
    explicit OwnedDialog(QWidget *parent) : m_dialog(new Dialog(parent)) {}
    ~OwnedDialog() { delete m_dialog.data(); }
    Q_DISABLE_COPY_MOVE(OwnedDialog)
    [[nodiscard]] bool isAlive() const { return !m_dialog.isNull(); }
    Dialog &operator*() const { return *m_dialog; }
    Dialog *operator->() const { return m_dialog.data(); }

private:
    QPointer<Dialog> m_dialog;
};

QString onScreen(QString text)
{
    return text.replace(crLf, "\n"_L1);
}

/// The buttons of a style, first to last. The last one stands for closing the box without a button.
std::vector<Button> buttonsOf(int style)
{
    switch (style & buttonBits) {
    case 1:
        return {QMessageBox::Ok, QMessageBox::Cancel};
    case box::YesNoCancel:
        return {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel};
    case box::YesNo:
        return {QMessageBox::Yes, QMessageBox::No};
    default:
        return {QMessageBox::Ok};
    }
}

Button defaultOf(const std::vector<Button> &buttons, int style)
{
    const auto index = static_cast<std::size_t>((style & defaultBits) / box::SecondButtonDefault);
    return index < buttons.size() ? buttons[index] : buttons.front();
}

QMessageBox::Icon iconOf(int style)
{
    switch (style & iconBits) {
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

Answer answerOf(Button button)
{
    switch (button) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        return Answer::Ok;
    }
}

void makeTouchable(const QDialog &dialog)
{
    for (auto *const button : dialog.findChildren<QAbstractButton *>()) {
        button->setMinimumSize(touchSize);
        button->setIcon({}); // the platform theme's icons differ in style from the box's icon
    }
}

void fillMessage(QMessageBox &box, const QString &text, int style, const QString &title)
{
    const auto buttons = buttonsOf(style);
    box.setWindowTitle(title);
    box.setTextFormat(Qt::PlainText);
    box.setText(onScreen(text));
    box.setIcon(iconOf(style));
    for (const Button button : buttons)
        box.addButton(button);
    box.setDefaultButton(defaultOf(buttons, style));
    makeTouchable(box);
    if (auto *const label = box.findChild<QLabel *>(u"qt_msgbox_label"_s))
        scrollLongText(*label);
}

void fillInput(QInputDialog &dialog, const QString &prompt, const QString &title, const QString &initial)
{
    dialog.setWindowTitle(title);
    dialog.setLabelText(onScreen(prompt));
    dialog.setTextValue(initial);
    dialog.adjustSize(); // builds the layout, and with it the label's buddy and the buttons
    makeTouchable(dialog);
    if (auto *const line = dialog.findChild<QLineEdit *>()) {
        line->setMinimumSize(inputSize);
        line->setAccessibleName(onScreen(prompt));
    }
    if (auto *const label = dialog.findChild<QLabel *>()) {
        label->setBuddy(nullptr); // a "&" of the data would become an accelerator
        label->setTextFormat(Qt::PlainText);
        scrollLongText(*label);
    }
    dialog.adjustSize();
}

} // namespace

Boxes::~Boxes() = default;

Answer QtBoxes::message(QWidget *parent, const QString &text, int style, const QString &title)
{
    const OwnedDialog<QMessageBox> box(parent);
    fillMessage(*box, text, style, title);
    const auto pressed = static_cast<Button>(run(*box));
    const auto buttons = buttonsOf(style);
    return answerOf(std::ranges::find(buttons, pressed) == buttons.end() ? buttons.back() : pressed);
}

QString QtBoxes::input(QWidget *parent, const QString &prompt, const QString &title, const QString &initial)
{
    const OwnedDialog<QInputDialog> dialog(parent);
    fillInput(*dialog, prompt, title, initial);
    const bool accepted = run(*dialog) == QDialog::Accepted;
    return accepted && dialog.isAlive() ? dialog->textValue() : QString();
}

void QtBoxes::setObserver(std::function<void(QDialog &)> observer)
{
    m_observer = std::move(observer);
}

int QtBoxes::run(QDialog &dialog)
{
    new EarlyKeyFilter(dialog);
    const QPointer<QDialog> alive(&dialog);
    if (const auto observer = m_observer)
        observer(dialog);
    return alive ? dialog.exec() : QDialog::Rejected;
}

} // namespace harrowby
