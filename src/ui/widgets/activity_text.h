// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>
#include <QTextCursor>

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

    /// For several entries at a time: while it lives they are put in front without being laid out. That is done once,
    /// when it goes.
    class Batch
    {
    public:
        explicit Batch(ActivityText &text);
        ~Batch();
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;

    private:
        ActivityText &m_text;
        QTextCursor m_edit;
    };

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
    bool m_inBatch = false;
    int m_toDrop = 0; ///< paragraphs in front whose layout is to be dropped
};

} // namespace harrowby
