// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/office_pages.h"
#include "app/office/page_finder.h"

#include <QDialog>
#include <QStringList>

#include <functional>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace harrowby::app {

class OfficePage;
class PageList;

/// The "Store" window: the pages that the user may see (office_pages.h), found by the list at the side and by words. In
/// a narrow window the list takes the place of the page when it is asked for.
class OfficeWindow final : public QDialog
{
    Q_OBJECT

public:
    OfficeWindow(const OfficeStore &store, const OfficeSettings &settings, const OfficeUser &user,
                 QWidget *parent = nullptr);

    /// `loss` says what has happened to the store once it is lost, and nothing before: no backup counts then.
    void watchStore(const std::function<QString()> &loss) { m_loss = loss; }
    /// The backup that is to take the store's place, for which the office was closed. Empty after any other end.
    [[nodiscard]] const QString &askedRestore() const { return m_askedRestore; }

    [[nodiscard]] QStringList pageTitles() const;
    /// A title that is not among them is ignored.
    void showPage(const QString &title);
    /// The page that is shown reads the store again.
    void readAnew();
    /// Builds the pages that have not been shown yet.
    void buildPages();

    [[nodiscard]] QSize minimumSizeHint() const override;
    /// Asks before an entry is lost or work is stopped.
    void reject() override;

protected:
    /// Enter presses the button that has the focus, and no other one.
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void layOut();
    void addShortcuts();
    QWidget *makeContent();
    QHBoxLayout *makeHead();
    void addWarnings(QHBoxLayout &head);
    void followWarnings();
    OfficePage *built(qsizetype page);
    void turnTo(qsizetype page);
    void step(qsizetype pages);
    void goTo(const OfficePlace &place, bool byKey);
    void openSide(bool open);
    void leaveSide();
    void beginSearch();
    void leaveForRestore(const QString &backup);
    [[nodiscard]] bool mayLeave();
    [[nodiscard]] QList<OfficePlace> find(const QString &typed);

    std::function<QString()> m_loss;
    OfficeContext m_context;
    QList<BuiltPage> m_pages; ///< those that the user may see; null until it is built
    QString m_askedRestore;
    bool m_narrow = false;
    bool m_sideOpen = false; ///< in place of the page, in a narrow window
    PageList *m_side = nullptr;
    QWidget *m_content = nullptr;
    QStackedWidget *m_stack = nullptr;
    QLabel *m_title = nullptr;
    QPushButton *m_menu = nullptr; ///< opens the side in a narrow window
    qsizetype m_current = -1;
};

} // namespace harrowby::app
