// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/code_reader_settings.h>

#include <QString>
#include <QStringList>

#include <algorithm>
#include <cstdint>

namespace harrowby {

/// Tells the keys of a code reader from those of a person, by the times that the key events bear. Knows no widget.
///
/// It is told of each key that could belong to a code, and answers what becomes of it. A key that is answered with Hold
/// waits with the caller until a later answer says that it is to be replayed, or belonged to a code.
///
/// Two readers at once cannot be told apart by their keys. What the first Enter ends is then longer than either code,
/// so no item has it; what comes behind it is the rest of the other code and may be another item's. So a burst that
/// begins within the gap after an end is told as `joined`: the caller refuses it when nobody knew the one before. A
/// rest that is too short for a code is Mixed, and never replayed.
class CodeBurst
{
public:
    struct Key
    {
        QString text{};         ///< one printable character; of no account for an end
        bool ends = false;      ///< Enter or Tab
        std::uint32_t time = 0; ///< milliseconds; wraps
    };

    struct Verdict
    {
        enum class Kind {
            Pass,    ///< no reader's; goes where it would have gone
            Hold,    ///< wait with it
            Swallow, ///< an end behind an end: readers may send two
            Code,    ///< the end of `code`: this key and those held are done with
            TooLong, ///< likewise, but longer than a code may be
            Mixed,   ///< likewise, but the rest of something else
        };

        Kind kind = Kind::Pass;
        int replay = 0; ///< so many of the keys that are held, the oldest, are no code's: replay them before this one
        QString code{};
        bool joined = false;
    };

    explicit CodeBurst(const CodeReaderSettings &settings);

    /// A gap as it counts: within the bounds of CodeReaderSettings.
    [[nodiscard]] static int countedGapMs(int gapMs)
    {
        return std::clamp(gapMs, CodeReaderSettings::LeastGapMs, CodeReaderSettings::GreatestGapMs);
    }

    [[nodiscard]] Verdict key(const Key &key);
    /// A key that no reader types, or a repeated one, or one without a time: all that are held are to be replayed.
    void interrupt();
    /// Nothing has followed for the longest gap: all that are held are to be replayed. What comes late all the same,
    /// with a time within the gap, makes no code any more.
    void giveUp();

    [[nodiscard]] int held() const { return static_cast<int>(m_keys.size()); }
    /// The longest gap, as it counts.
    [[nodiscard]] int longestGapMs() const { return m_settings.longestGapMs; }

private:
    [[nodiscard]] bool follows(std::uint32_t time) const;
    [[nodiscard]] Verdict character(const Key &key, int replay);
    [[nodiscard]] Verdict end(int replay);
    [[nodiscard]] Verdict judged() const;
    [[nodiscard]] bool mayBePrefixed() const;
    void forget();

    CodeReaderSettings m_settings;
    QStringList m_keys;       ///< held, oldest first
    int m_given = 0;          ///< characters of this burst that were given up
    bool m_begun = false;     ///< there is a last key
    bool m_behindEnd = false; ///< it was the end of a burst
    bool m_joined = false;    ///< the burst under way began right behind such an end
    std::uint32_t m_last = 0;
};

} // namespace harrowby
