// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/page_finder.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <functional>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace harrowby::app {

/// The office's side: a list of its pages, and a field in which a page or a single setting is found by its words. What
/// is found takes the place of the pages until the field is empty again.
class PageList final : public QWidget
{
    Q_OBJECT

public:
    using Finder = std::function<QList<OfficePlace>(const QString &typed)>;

    PageList(const QList<OfficePageEntry> &pages, Finder finder, QWidget *parent = nullptr);

    void setCurrentPage(qsizetype page);
    /// To the field, with what is in it selected.
    void beginSearch();
    /// Empties the field and lists the pages.
    void endSearch();

Q_SIGNALS:
    /// Another page is the current one; the focus stays here.
    void turnedTo(qsizetype page);
    /// A page or a setting was chosen: by Enter, a click or a touch.
    void chosen(const harrowby::app::OfficePlace &place, bool byKey);
    /// Escape, with nothing typed.
    void left();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void createField();
    void createList();
    void listPages();
    void listFound(const QString &typed);
    void addGroup(const QString &group);
    void addPlace(const OfficePlace &place, const QString &caption);
    void turn();
    void choose(const QListWidgetItem *row, bool byKey);
    [[nodiscard]] bool handleKey(int key);
    [[nodiscard]] bool startTyping(const QString &text);

    QList<OfficePageEntry> m_pages;
    Finder m_finder;
    QList<OfficePlace> m_places; ///< of the rows; those of groups have none
    qsizetype m_current = 0;
    bool m_searching = false;
    QLineEdit *m_field = nullptr;
    QLabel *m_count = nullptr;
    QListWidget *m_list = nullptr;
};

} // namespace harrowby::app
