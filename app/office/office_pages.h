// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/office_store.h"
#include "app/office/office_user.h"
#include "app/records/deeds.h"
#include "app/shop/office_settings.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>

class QWidget;

/// Which pages the office has. A new one is an entry of the list in office_pages.cpp.
namespace harrowby::app {

class DoorWatch;
class OfficePage;

/// What a page is built with. Lives as long as the office's window, and what it refers to lives longer.
struct OfficeContext
{
    OfficeStore store;
    OfficeSettings settings;
    OfficeUser user;
    /// What has happened to the store once it is lost, and nothing before: no copy counts then.
    std::function<QString()> loss;
    std::shared_ptr<DoorWatch> door; ///< asked before what changes much

    /// For what the user does here.
    [[nodiscard]] SignedDeeds deeds() const;
    /// Why nothing can be done in this store now: it is lost, or the user would not be let in any more. Empty
    /// otherwise.
    [[nodiscard]] QString obstacle() const;
};

enum class OfficeRight {
    Stock,         ///< who has the right to stock, and ADMINISTRATOR
    Administrator, ///< ADMINISTRATOR alone
};

/// Words by which a page is found beside those that stand on it.
struct MoreWords
{
    QString words;
    QString control; ///< object name of what they lead to; none leads to the page
};

struct OfficePageEntry
{
    QString caption; ///< with the letter that turns to the page, which no control of any page may have
    QString group;
    OfficeRight right = OfficeRight::Administrator;
    QString about; ///< one line on what is on it
    QList<MoreWords> words;
    std::function<OfficePage *(const OfficeContext &context, QWidget *parent)> make;
    /// What is to be told beside the title of any page when the office is opened, in a few words; nothing for most.
    std::function<QString(const OfficeContext &context)> warning = {};

    /// The caption without its letter.
    [[nodiscard]] QString title() const;
};

/// In the order of the list; those of one group stand together.
[[nodiscard]] const QList<OfficePageEntry> &officePages();

/// Those that the user may see.
[[nodiscard]] QList<OfficePageEntry> officePagesFor(const OfficeUser &user);

} // namespace harrowby::app
