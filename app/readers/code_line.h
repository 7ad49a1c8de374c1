// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace harrowby::app {

/// Gathers the characters that a named reader sends into codes. Nothing is guessed: a code goes from one end (Enter,
/// line feed or Tab) to the next.
class CodeLine
{
public:
    /// In QChars. Up to here a code is told, and checkCode() (app/codes/code_text.h) says that it is too long; beyond
    /// it nothing is told but that.
    static constexpr qsizetype longest = 1024;

    struct Outcome
    {
        QString code;
        bool tooLong = false; ///< then there is no code
    };

    /// `told` gets each code as it is complete. Ends in a row, as of readers that send two, make no empty codes.
    void add(QChar character, const std::function<void(const Outcome &)> &told);
    /// What was begun is not to be had whole: the rest up to the next end is no code.
    void spoil() { m_spoiled = true; }
    /// The reader is new, or has rested.
    void clear();

private:
    QString m_text;
    bool m_spoiled = false;
};

} // namespace harrowby::app
