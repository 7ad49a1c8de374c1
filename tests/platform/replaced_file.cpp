// SPDX-License-Identifier: MIT
#include "tests/platform/replaced_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace {

std::function<void()> afterLook;

} // namespace

void harrowby::testing::afterNextLookAtAFile(std::function<void()> action)
{
    afterLook = std::move(action);
}

extern "C" int stat(const char *path, struct stat *facts) noexcept
{
    const int result = ::fstatat(AT_FDCWD, path, facts, 0);
    if (const auto action = std::exchange(afterLook, {}))
        action();
    return result;
}
