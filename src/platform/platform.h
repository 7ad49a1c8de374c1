// SPDX-License-Identifier: MIT
#pragma once

#include "platform/boxes.h"
#include "platform/clock.h"
#include "platform/object_registry.h"
#include "platform/printers.h"
#include "platform/saved_settings.h"

#include <memory>

namespace harrowby {

/// Everything outside the database that the window uses, each behind an interface, so that a test can replace it.
struct Platform
{
    std::shared_ptr<Boxes> boxes;
    std::shared_ptr<SavedSettings> settings;
    std::shared_ptr<Printers> printers;
    std::shared_ptr<Clock> clock;
    std::shared_ptr<ObjectRegistry> objects;

    /// The real ones, shared by every window of this process.
    [[nodiscard]] static const Platform &native();
};

} // namespace harrowby
