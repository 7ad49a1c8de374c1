// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

class QDialog;
class QWidget;

namespace harrowby {

/// Style of a message box: a button set plus an icon plus the default button.
namespace box {
inline constexpr int OkOnly = 0;
inline constexpr int YesNoCancel = 3;
inline constexpr int YesNo = 4;
inline constexpr int Critical = 16;
inline constexpr int Question = 32;
inline constexpr int Exclamation = 48;
inline constexpr int Information = 64;
inline constexpr int SecondButtonDefault = 256;

inline constexpr int Ask = Question + YesNo;                                // 36
inline constexpr int AskDefaultNo = Question + YesNo + SecondButtonDefault; // 292
inline constexpr int AskOrCancel = Question + YesNoCancel;                  // 35
} // namespace box

enum class Answer {
    Ok = 1,
    Cancel = 2,
    Yes = 6,
    No = 7,
};

/// Modal message and input boxes. Texts are plain text, whatever they contain; CR LF is one line break.
class Boxes
{
public:
    virtual ~Boxes();
    /// Shows a box and returns the button that closed it; closing it otherwise answers Cancel, or No, or Ok.
    virtual Answer message(QWidget *parent, const QString &text, int style, const QString &title) = 0;
    /// Asks for one line of text. Cancel answers an empty text.
    virtual QString input(QWidget *parent, const QString &prompt, const QString &title, const QString &initial) = 0;
};

/// The real boxes: QMessageBox and QInputDialog.
class QtBoxes final : public Boxes
{
public:
    Answer message(QWidget *parent, const QString &text, int style, const QString &title) override;
    QString input(QWidget *parent, const QString &prompt, const QString &title, const QString &initial) override;

    /// Called with each box right before it is run, so that a test can check and answer the real thing.
    void setObserver(std::function<void(QDialog &)> observer);

private:
    int run(QDialog &dialog);
    std::function<void(QDialog &)> m_observer;
};

} // namespace harrowby
