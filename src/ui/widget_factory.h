// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QBoxLayout;
class QCheckBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QWidget;

namespace harrowby {

class EntryEdit;
class PickList;

// Ways to make a control of the window, so that all of a kind are alike. The parent owns what is made; a control's
// objectName is its name.

/// Distance between neighbouring controls.
inline constexpr int controlGap = 8;

/// The name of an element of a control array.
[[nodiscard]] QString elementName(const QString &array, int index);

QPushButton *makeButton(QWidget *parent, const QString &name, const QString &caption);
/// The button of its panel that stands out.
QPushButton *makePrimaryButton(QWidget *parent, const QString &name, const QString &caption);
/// A button that shows a drawing; what it does stands in its tool tip and is read out.
QPushButton *makePictureButton(QWidget *parent, const QString &name, const QString &icon, const QString &purpose);
PickList *makePickList(QWidget *parent, const QString &name, const QString &purpose);
EntryEdit *makeEntry(QWidget *parent, const QString &name, const QString &purpose);
QCheckBox *makeCheckBox(QWidget *parent, const QString &name, const QString &caption);
/// A fixed text with a style word: "heading", "caption", "title".
QLabel *makeText(QWidget *parent, const QString &text, const QString &styleWord);
/// Sets the property by which the style sheet selects a control.
void setStyleWord(QWidget *widget, const QString &styleWord);

/// A caption over its control, as one column.
QBoxLayout *captioned(const QString &caption, QWidget *control);
/// A grid over a whole panel or page, its cells a gap apart.
QGridLayout *makeGrid(QWidget *panel);
/// A column over a whole panel or page, a gap between its rows.
QBoxLayout *makeColumn(QWidget *panel);
QBoxLayout *makeRow();

} // namespace harrowby
