// SPDX-License-Identifier: MIT
#include "platform/platform.h"

#include "platform/native_printers.h"

namespace harrowby {
namespace {

Platform makeNative()
{
    Platform platform;
    platform.boxes = std::make_shared<QtBoxes>();
    platform.settings = std::make_shared<IniSettings>();
    platform.clock = std::make_shared<SystemClock>();
    platform.printers = std::make_shared<NativePrinters>(platform.clock);
    platform.objects = ObjectRegistry::native();
    return platform;
}

} // namespace

const Platform &Platform::native()
{
    static const Platform platform = makeNative();
    return platform;
}

} // namespace harrowby
