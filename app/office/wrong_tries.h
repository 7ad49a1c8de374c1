// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

#include <chrono>
#include <utility>

namespace harrowby::app {

/// The wrong passwords since the last right one, and how long the next try has to wait. Kept in a small file, so that a
/// restart changes nothing and several offices share one pause. A file that cannot be read counts as none.
class WrongTries
{
public:
    /// Without a file they are forgotten with the object.
    explicit WrongTries(QString file = {}) : m_file(std::move(file)) {}

    /// Called before a password is compared, so that killing the program afterwards gains nothing.
    void add(const QDateTime &now);
    /// The password was right.
    void forget();
    /// Never longer than after so many tries in a row, whatever the clock says.
    [[nodiscard]] std::chrono::milliseconds pause(const QDateTime &now);

private:
    void load();
    void save() const;

    QString m_file;
    int m_count = 0;
    qint64 m_last = 0; ///< milliseconds since 1970
};

} // namespace harrowby::app
