// SPDX-License-Identifier: MIT
#pragma once

#include "tables/paper.h"

#include <QWidget>

#include <functional>

class QPushButton;

namespace harrowby::tables {

/// What is put out, asked for when a button is pressed.
struct OutputSource
{
    std::function<const Table &()> table;
    std::function<Figure()> figure;     ///< may be empty
    std::function<QString()> fileWords; ///< what a file is called, without its ending
};

/// Asks for a place to save at, in a box; empty when there is to be none. `suggestion` is a path, `suffix` such as
/// "pdf".
[[nodiscard]] QString askForFile(QWidget *parent, const QString &suggestion, const QString &suffix);

/// The user's folder of documents, or the home folder where there is none.
[[nodiscard]] QString documentsFolder();

/// Buttons that print a table and save it as PDF and CSV. What fails is told in a box.
class OutputBar : public QWidget
{
    Q_OBJECT

public:
    /// Gives the path to save at, empty for none. `suggestion` is a path, `suffix` "pdf" or "csv".
    using FileChooser = std::function<QString(QWidget *parent, const QString &suggestion, const QString &suffix)>;

    explicit OutputBar(OutputSource source, QWidget *parent = nullptr);

    /// Asks this instead of the person.
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    void setReady(bool ready);

Q_SIGNALS:
    /// What has been done, for a status line.
    void done(const QString &text);

private:
    QPushButton *addButton(const QString &caption, const QString &name, void (OutputBar::*act)());
    void print();
    void savePdf();
    void saveCsv();
    void save(const QString &suffix, const std::function<QByteArray()> &contents);

    OutputSource m_source;
    FileChooser m_chooseFile;
};

} // namespace harrowby::tables
