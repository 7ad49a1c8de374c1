// SPDX-License-Identifier: MIT
#pragma once

class QObject;
class QWidget;

namespace harrowby {

/// Where a code goes that is scanned while something has the focus. A box in front is the caller's to know.
enum class CodePlace {
    Host,   ///< nowhere else: buttons, lists, tabs, entries of figures
    Entry,  ///< into the entry, as it takes text
    Hidden, ///< what is typed there is hidden: nobody looks at it
};

/// `focus`: what the keys of a window go to; may be null.
[[nodiscard]] CodePlace codePlaceOf(QObject *focus);

/// Marks an entry that takes text as none for codes: they go to the host.
void keepCodesOut(QWidget &entry);

} // namespace harrowby
