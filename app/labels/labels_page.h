// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/labels/label_list.h"
#include "app/labels/label_output.h"
#include "app/labels/label_settings.h"

#include <functional>

class QComboBox;
class QLabel;
class QLayout;
class QPushButton;
class QTreeView;

namespace harrowby::app {

class LabelPreview;
class StepEntry;
class WorkStrip;

/// The office's page of price labels: which items, how many of each, on which paper; a picture of each; to a printer or
/// a PDF.
class LabelsPage final : public OfficePage
{
    Q_OBJECT

public:
    /// Gives the path to save at, empty for none. `suggestion` is a path.
    using FileChooser = std::function<QString(QWidget *parent, const QString &suggestion)>;

    /// `store`: the file, which is opened once more to read many items. The records of the deeds must outlive it.
    LabelsPage(SignedDeeds deeds, QString store, OfficeSettings settings, QWidget *parent = nullptr);

    [[nodiscard]] std::optional<LeavingQuestion> leaving() const override;

    /// Asks this instead of the person.
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }

protected:
    /// Asks for the printers, and for the currency that is saved now.
    void showEvent(QShowEvent *event) override;

private:
    void createList();
    void createPaper();
    void layOut();
    [[nodiscard]] QLayout *makeItems();
    [[nodiscard]] QLayout *makePrinting();
    QPushButton *addButton(const QString &caption, const QString &name, void (LabelsPage::*act)());
    void orderTabs();
    void fillPapers();

    void addItems();
    void removeItem();
    void removeAll();
    void followList();
    void followChoice();
    void showLabel();
    void showPlace();
    void takeChoice(int choice);
    void takeCount(int count);
    void choosePaper(int entry);
    void choosePrinter();
    void adjust();

    void print();
    void savePdf();
    void tell(const QString &text);
    void keep();
    [[nodiscard]] int currentRow() const;
    [[nodiscard]] LabelPlan plan() const;
    [[nodiscard]] LabelOrder order() const;

    Records &m_records;
    QString m_store;
    OfficeSettings m_settings;
    LabelPaper m_paper;
    LabelSetting m_setting; ///< for the paper
    QString m_currency;
    FileChooser m_chooseFile;
    LabelList m_list;
    QTreeView *m_view = nullptr;
    QLabel *m_sum = nullptr;
    StepEntry *m_count = nullptr;
    QComboBox *m_code = nullptr;
    QPushButton *m_add = nullptr;
    QPushButton *m_adjust = nullptr;
    QPushButton *m_remove = nullptr;
    QPushButton *m_removeAll = nullptr;
    LabelPreview *m_preview = nullptr;
    QComboBox *m_papers = nullptr;
    QLabel *m_placeCaption = nullptr;
    StepEntry *m_place = nullptr;
    QComboBox *m_printer = nullptr;
    QPushButton *m_print = nullptr;
    QPushButton *m_savePdf = nullptr;
    QLabel *m_outcome = nullptr;
    WorkStrip *m_strip = nullptr;
    LabelOutput m_output; ///< last: its end waits for what it does
};

} // namespace harrowby::app
