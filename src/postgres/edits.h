// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <algorithm>

namespace harrowby::postgres {

/// Changes to a text, each at a place of the text as it was. Those of one place are done in their order, and one within
/// what another one replaces is left out.
class Edits
{
public:
    void replace(qsizetype begin, qsizetype length, const QString &text) { m_edits << Edit{begin, length, text}; }
    void insert(qsizetype place, const QString &text) { replace(place, 0, text); }

    [[nodiscard]] QString appliedTo(QString text) const
    {
        QList<Edit> edits = m_edits;
        std::stable_sort(edits.begin(), edits.end(), [](const Edit &a, const Edit &b) { return a.begin < b.begin; });
        QList<Edit> kept;
        for (const Edit &edit : edits) {
            if (kept.isEmpty() || !kept.back().encloses(edit.begin))
                kept << edit;
        }
        for (auto edit = kept.crbegin(); edit != kept.crend(); ++edit)
            text.replace(edit->begin, edit->length, edit->text);
        return text;
    }

private:
    struct Edit
    {
        qsizetype begin;
        qsizetype length;
        QString text;

        [[nodiscard]] bool encloses(qsizetype place) const { return begin < place && place < begin + length; }
    };
    QList<Edit> m_edits;
};

} // namespace harrowby::postgres
