// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

#include <deque>

namespace harrowby {

/// The activity log, newest entry first. How much of it is kept: ui/activity_log_limit.h.
class ActivityText final : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit ActivityText(QWidget *parent = nullptr);

    /// Puts the entry in front, and forgets the oldest ones that are too many. The newest one always stays.
    void prepend(const QString &entry);
    void clearEntries();

private:
    struct Entry
    {
        int characters = 0; ///< in the document, where a line break is one
        int paragraphs = 0;
    };
    static qsizetype bytesOf(const Entry &entry);

    void dropLayout(int paragraphs);
    void forgetOldest();

    std::deque<Entry> m_entries; ///< newest first
    qsizetype m_bytes = 0;
};

} // namespace harrowby
