// SPDX-License-Identifier: MIT
#pragma once

#include "input/early_key_filter.h"
#include "platform/boxes.h"

#include <QDialog>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <utility>

/// The real boxes, examined while they are open.
namespace harrowby::testing {

/// Runs `look` on each box once it is on the screen and listens to keys. A failed test leaves no box open.
template <class Dialog>
void whenShown(QtBoxes &boxes, std::function<void(Dialog &)> look)
{
    boxes.setObserver([look = std::move(look)](QDialog &dialog) {
        QTimer::singleShot(0, &dialog, [box = QPointer<Dialog>(qobject_cast<Dialog *>(&dialog)), look] {
            if (!QTest::qWaitFor([&] { return box.isNull() || EarlyKeyFilter::acceptsKeys(*box); }) || box.isNull())
                return;
            look(*box);
            if (box && QTest::currentTestFailed())
                box->reject();
        });
    });
}

} // namespace harrowby::testing
