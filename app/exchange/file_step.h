// SPDX-License-Identifier: MIT
#pragma once

#include "app/exchange/import_step.h"

class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QPushButton;

namespace harrowby::app {

class GridView;
class SampleModel;

/// The first step: what the file holds and how it is read, with its first rows. All that was found out can be changed.
class FileStep final : public ImportStep
{
    Q_OBJECT

public:
    explicit FileStep(ImportDraft &draft, QWidget *parent = nullptr);

    [[nodiscard]] QString heading() const override { return QStringLiteral("The file and how it is read"); }
    void enter() override;
    [[nodiscard]] Result<void, QString> leave() override;

Q_SIGNALS:
    /// Another file is wanted.
    void fileWanted();

private:
    [[nodiscard]] QHBoxLayout *makeFileLine();
    [[nodiscard]] QHBoxLayout *makeChoices();
    QComboBox *makeChoice(QHBoxLayout &row, const QString &caption, const QString &name);
    void takeChoices();
    void chooseSign();
    void chooseHeadings();
    void showSample();

    QLabel *m_file = nullptr;
    QPushButton *m_another = nullptr;
    QComboBox *m_kind = nullptr;
    QComboBox *m_encoding = nullptr;
    QComboBox *m_separator = nullptr;
    QComboBox *m_decimalSign = nullptr;
    QLabel *m_hint = nullptr;
    QCheckBox *m_firstIsRow = nullptr; ///< only where the first line may be a row
    SampleModel *m_model = nullptr;
    GridView *m_rows = nullptr;
};

} // namespace harrowby::app
