// SPDX-License-Identifier: MIT
#pragma once

#include "app/exchange/import_step.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QVBoxLayout;

namespace harrowby::app {

/// The third step: what the file leaves open, and what the store's own rules leave to the shop.
class ChoicesStep final : public ImportStep
{
    Q_OBJECT

public:
    explicit ChoicesStep(ImportDraft &draft, QWidget *parent = nullptr);

    [[nodiscard]] QString heading() const override { return QStringLiteral("A few choices"); }
    void enter() override;
    [[nodiscard]] Result<void, QString> leave() override;

private:
    void makeQuestion(QVBoxLayout &rows);
    QCheckBox *addTick(QVBoxLayout &rows, const QString &caption, const QString &name, const QString &about);
    void showQuestion();
    void followAsStored();

    QWidget *m_signPart = nullptr;
    QLabel *m_question = nullptr;
    QComboBox *m_sign = nullptr;
    QCheckBox *m_asStored = nullptr;
    QCheckBox *m_capitals = nullptr;
    QCheckBox *m_categories = nullptr;
    QCheckBox *m_stockInHand = nullptr;
    QLabel *m_nothing = nullptr;
};

} // namespace harrowby::app
