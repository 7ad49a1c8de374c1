// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::app {

/// What has happened to a store file while a program had it open.
struct StoreLoss
{
    enum class Kind {
        Moved,       ///< it has another name now
        Removed,     ///< it has no name any more
        Replaced,    ///< another file lies in its place
        Overwritten, ///< its content was overwritten or cut short in place
        LogLost,     ///< the log beside it was removed or replaced
    };
    Kind kind = Kind::Removed;
    QString path;            ///< the store's
    QString nowAt;           ///< where the file lies that was opened; empty when it has no name
    QString logAside;        ///< where its log was put; empty when there was nothing in it
    bool isComplete = false; ///< whether all that was saved is in the file that was opened

    /// What was saved can only be had through the program that still has the file open.
    [[nodiscard]] bool needsRescue() const;
};

/// What has happened, in one sentence.
[[nodiscard]] QString lossHeadline(const StoreLoss &loss);
/// What is in the file, and what to do; `place` is what the person sits at: "till" or "office".
[[nodiscard]] QString lossAdvice(const StoreLoss &loss, const QString &place);

} // namespace harrowby::app
