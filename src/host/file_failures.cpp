// SPDX-License-Identifier: MIT
#include "platform/file_failures.h"

#include <harrowby/file_failure.h>

#include <utility>

namespace harrowby {

void setFileFailureHandler(FileFailureHandler handler) noexcept
{
    FileFailures::setHandler(std::move(handler));
}

} // namespace harrowby
