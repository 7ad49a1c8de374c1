// SPDX-License-Identifier: MIT
#include "ui/widgets/activity_text.h"

#include "ui/activity_log_limit.h"

#include <QTextBlock>
#include <QTextLayout>

#include <utility>

namespace harrowby {

ActivityText::ActivityText(QWidget *parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false); // the undo history would grow with the log
}

void ActivityText::prepend(const QString &entry)
{
    const int characters = document()->characterCount();
    const int paragraphs = document()->blockCount();
    // Inserted in front: setting the whole text costs time in proportion to the log.
    QTextCursor(document()).insertText(entry);
    const Entry added = {document()->characterCount() - characters, document()->blockCount() - paragraphs};
    m_entries.push_front(added);
    m_bytes += bytesOf(added);
    m_toDrop += added.paragraphs;
    if (m_inBatch)
        return;
    dropLayout(std::exchange(m_toDrop, 0));
    forgetOldest();
}

ActivityText::Batch::Batch(ActivityText &text) : m_text(text), m_edit(text.document())
{
    m_text.m_inBatch = true;
    m_edit.beginEditBlock();
}

ActivityText::Batch::~Batch()
{
    m_text.forgetOldest();
    m_edit.endEditBlock();
    m_text.m_inBatch = false;
    m_text.dropLayout(std::exchange(m_text.m_toDrop, 0));
}

void ActivityText::clearEntries()
{
    clear();
    m_entries.clear();
    m_bytes = 0;
}

qsizetype ActivityText::bytesOf(const Entry &entry)
{
    return activity_log::bytesOf(entry.characters, entry.paragraphs);
}

/// Inserting lays the new text out, and QTextLayout keeps the glyphs, some forty bytes a character. An empty layout
/// frees them; the text is laid out again when it is painted.
void ActivityText::dropLayout(int paragraphs)
{
    QTextBlock block = document()->begin();
    for (int i = 0; i <= paragraphs && block.isValid(); ++i, block = block.next()) {
        QTextLayout *layout = block.layout();
        layout->beginLayout();
        layout->endLayout();
        block.clearLayout();
    }
}

void ActivityText::forgetOldest()
{
    int characters = 0;
    while (activity_log::isTooLong(m_entries.size(), m_bytes)) {
        characters += m_entries.back().characters;
        m_bytes -= bytesOf(m_entries.back());
        m_entries.pop_back();
    }
    if (characters == 0)
        return;
    const int end = document()->characterCount() - 1;
    QTextCursor oldest(document());
    oldest.setPosition(end - characters);
    oldest.setPosition(end, QTextCursor::KeepAnchor);
    oldest.removeSelectedText();
}

} // namespace harrowby
