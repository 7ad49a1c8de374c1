// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

#include <chrono>
#include <utility>

namespace harrowby::app {

/// The whole pause after so many wrong tries: none after two, then 1 s, doubled with each up to 16 s.
[[nodiscard]] std::chrono::milliseconds pauseAfter(int wrongTries);

/// The wrong passwords at the store's office since the last right one of ADMINISTRATOR, and what is left of the pause
/// before the next try. Kept in a small file, so that a restart changes nothing and several offices share one pause. A
/// file that cannot be read counts as none.
class WrongTries
{
public:
    /// Without a file they are forgotten with the object.
    explicit WrongTries(QString file = {}) : m_file(std::move(file)) {}

    /// Called before a password is compared, so that killing the program afterwards gains nothing.
    void add(const QDateTime &now);
    /// The password was right.
    void forget();
    /// The last try was right, and those before it still count.
    void takeBack();
    /// How long the next try still has to wait: pauseAfter() less the time since the last try. Never longer than
    /// pauseAfter(), whatever the clock says.
    [[nodiscard]] std::chrono::milliseconds pause(const QDateTime &now);

private:
    void load();
    void save() const;

    QString m_file;
    int m_count = 0;
    qint64 m_last = 0; ///< milliseconds since 1970
};

} // namespace harrowby::app
