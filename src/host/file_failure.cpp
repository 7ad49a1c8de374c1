// SPDX-License-Identifier: MIT
#include "platform/failure_telling.h"

#include <harrowby/file_failure.h>

#include <utility>

namespace harrowby {

void setFileFailureHandler(FileFailureHandler handler) noexcept
{
    FailureTelling::setHandler(std::move(handler));
}

} // namespace harrowby
