// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>
#include <QWidget>

namespace harrowby::app {

struct ImportDraft;

/// One step of an import: shows what is known by now, and takes what the person says.
class ImportStep : public QWidget
{
    Q_OBJECT

public:
    /// The draft must outlive it.
    explicit ImportStep(ImportDraft &draft, QWidget *parent = nullptr) : QWidget(parent), m_draft(draft) {}

    [[nodiscard]] virtual QString heading() const = 0;
    /// Caption of the button that goes on.
    [[nodiscard]] virtual QString nextWords() const { return QStringLiteral("&Next"); }
    /// Called each time the step is come to, from either side.
    virtual void enter() = 0;
    /// Takes what was chosen; or says what is missing, in words for a person, with the focus where it is mended.
    [[nodiscard]] virtual Result<void, QString> leave() = 0;

protected:
    [[nodiscard]] ImportDraft &draft() { return m_draft; }
    [[nodiscard]] const ImportDraft &draft() const { return m_draft; }

private:
    ImportDraft &m_draft;
};

} // namespace harrowby::app
