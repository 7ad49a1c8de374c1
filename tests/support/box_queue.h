// SPDX-License-Identifier: MIT
#pragma once

#include "platform/boxes.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>

class QDialog;
class QInputDialog;
class QMessageBox;

namespace harrowby::test {

/// Answers the real boxes, in the order in which a test expects them. A box that nobody expected, one whose text, icon,
/// buttons or default button differ, and an expected one that never came are problems.
class BoxQueue
{
public:
    explicit BoxQueue(QtBoxes &boxes);

    void expect(const QString &text, int style, Answer answer = Answer::Ok);
    /// As expect(), and runs `meanwhile` while the box is open.
    void expect(const QString &text, int style, Answer answer, std::function<void()> meanwhile);
    /// No answer stands for Cancel.
    void expectInput(const QString &prompt, const QString &title, const QString &initial,
                     const std::optional<QString> &answer);
    /// From now on, unexpected boxes are answered by `answer` and are no problem.
    void answerTheRest(std::function<Answer(const QString &text)> answer);

    /// Whether every expected box came, and no other.
    [[nodiscard]] bool isDone() const { return m_expected.empty() && m_problems.isEmpty(); }
    [[nodiscard]] QByteArray problems() const;

private:
    struct Expected
    {
        QString text;
        int style = 0;
        Answer answer = Answer::Ok;
        std::function<void()> meanwhile;
        bool isInput = false;
        QString title;
        QString initial;
        std::optional<QString> typed;
    };

    void meet(QDialog &dialog);
    void meetMessage(QMessageBox &message);
    void meetInput(QInputDialog &input);
    void check(const Expected &expected, const QMessageBox &message);
    void check(bool right, const QString &problem);

    std::deque<Expected> m_expected;
    QStringList m_problems;
    std::function<Answer(const QString &)> m_answerTheRest;
};

} // namespace harrowby::test
