// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemModelTester>

class QWidget;

/// What a person does with a widget.
namespace harrowby::test {

inline constexpr auto failuresInTest = QAbstractItemModelTester::FailureReportingMode::QtTest;

void turnWheel(QWidget &widget, int steps);

} // namespace harrowby::test
