// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_file.h"
#include "app/catalogue/import_types.h"
#include "app/csv/csv_guess.h"
#include "app/exchange/sample.h"

#include <QStringList>

namespace harrowby::app {

/// An import while it is being prepared.
struct ImportDraft
{
    ImportFile file;
    ImportChoices choices;
    bool signIsChosen = false; ///< the decimal sign is the person's, not the file's
    DecimalGuess decimal;      ///< what the file says of it
    Sample sample;
    QStringList headings;        ///< of which choices.columns speak
    bool mayBeAsStored = false;  ///< it is an export, and the store has none of its kind yet
    bool refusedMayStay = false; ///< the rows that can be imported are, where others are refused
    StagedImport staged;         ///< with the ID 0 before there is a preview

    [[nodiscard]] bool signIsOpen() const { return !signIsChosen && !decimal.sign; }
};

} // namespace harrowby::app
