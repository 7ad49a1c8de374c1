// SPDX-License-Identifier: MIT
#include "tests/support/known_boxes.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

/// "*" stands for data.
const QStringList &knownTexts()
{
    static const QStringList texts{
        u"Close Inventory?"_s,
        u"There are item(s) in the cart, do you still want to Close Inventory?"_s,
        u"To Start using Harrowby Inventory Tool, *"_s,
        u"You have entered a blank entry!"_s,
        u"Username or Password Incorrect!"_s,
        u"User not Enabled to use this tool!"_s,
        u"You must Login in First!"_s,
        u"You must login first!"_s,
        u"User [*] doesn't have this privilege!"_s,
        u"Log out User[*]?"_s,
        u"Cart is not empty, Purchase Cart?"_s,
        u"Clear Activity Log!"_s,
        u"Category Name Entry can't be Used!"_s,
        u"Category Name Entry is Blank!"_s,
        u"Category Already Added!"_s,
        u"Category [*] Added!"_s,
        u"There are no Category to Change"_s,
        u"Please First Select a Category!"_s,
        u"Change Category[*] to what new name?"_s,
        u"Category Name too short!"_s,
        u"Category Name Changed!"_s,
        u"There are no Category to Delete."_s,
        u"Please First Select a Category to Delete!"_s,
        u"Please note that any Stock item under this category will be moved to 'OTHER CATEGORY. "
        "Do you want to continue to delete Category [*]?"_s,
        u"Category [*] Deleted!"_s,
        u"Item Already Exist in Cart.\nTo Update - YES, To Replace - NO"_s,
        u"Delete [*] from Cart?"_s,
        u"Cart is Empty!"_s,
        u"Clear Cart?"_s,
        u"Enter new price for item [*]?"_s,
        u"Non-numeric Entry for Cost"_s,
        u"Reprint Last Purchase?"_s,
        u"Item List:\n\n1. *\n\n\n\nPurchased Cart?"_s,
        u"Items have been purchased!\n\nPurchase ID: *"_s,
        u"Item is empty!\nYou can add a new Item from Add/Edit Stock"_s,
        u"There is no available stock item(s) for *. Kindly reorder Stock!"_s,
        u"There are only * item(s) in stock for *. Kindly reorder Stock!"_s,
        u"There are only * item(s) in stock for * and have already of * this item(s) in cart."_s,
        u"No Stock Item Selected!"_s,
        u"Delete Stock [*] with *?"_s,
        u"Stock [*] with * has been deleted!"_s,
        u"Invalid Category ID Entry!"_s,
        u"Invalid Category Name Selection!"_s,
        u"Invalid Item Name Entry!"_s,
        u"Non-numeric or Invalid Stock Cost!"_s,
        u"Non-numeric or Invalid Reorder Level!"_s,
        u"Non-numeric or Invalid Available Stock!"_s,
        u"Stock must either be Enabled or Disabled!"_s,
        u"Update Stock [*] with *, *, Unit Cost *, R. Level *, Avail. *, *?"_s,
        u"Stock [*] with ID [*] cannot be updated because multiple entries already exist. "
        "Change Stock ID or Item Name and try again!"_s,
        u"Stock [*] with ID [*] has been added successfully."_s,
        u"Stock [*] with ID [*] has been updated successfully."_s,
        u"New Stock Number is invalid or less than 1!"_s,
        u"Add * New item(s) to Stock [*]?"_s,
        u"Undo last added value of * from Stock [*]?"_s,
        u"You have selected an item!"_s,
        u"You have entered an invalid quantity. Quantity must be greater than 0!"_s,
        u"Please Enter Search item name or ID?"_s,
        u"Invalid Search Entry?"_s,
        u"No Search Found for *!"_s,
        u"Nothing to Undo!"_s,
        u"Undo last Purchased Cart with ID [*]?"_s,
        u"Nothing to Delete!"_s,
        u"Delete Purchased Cart with ID [*].\nAll purchased items will br restored (Y/N)?"_s,
        u"Error loading report, Please restart Harrowby Server or the System!\n"
        "If this problem persist, please run a Scandisk and replace to replace missing files or reinstall Harrowby. "
        "See *"_s,
    };
    return texts;
}

/// Made once, as a random user meets hundreds of thousands of boxes.
const std::vector<QRegularExpression> &knownPatterns()
{
    static const std::vector<QRegularExpression> patterns = [] {
        std::vector<QRegularExpression> all;
        for (const QString &text : knownTexts()) {
            const QString expression = QRegularExpression::escape(text).replace(u"\\*"_s, u".*"_s);
            all.emplace_back(QRegularExpression::anchoredPattern(expression),
                             QRegularExpression::DotMatchesEverythingOption);
        }
        return all;
    }();
    return patterns;
}

} // namespace

bool isKnownBox(const QString &text)
{
    return std::ranges::any_of(knownPatterns(),
                               [&text](const QRegularExpression &pattern) { return pattern.match(text).hasMatch(); });
}

} // namespace harrowby::test
