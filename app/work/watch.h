// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <type_traits>
#include <utility>

namespace harrowby::app {

/// Told each step of a piece of work, and asked whether it goes on. Made of any function; an empty one always goes on.
template <typename Step>
class Watch
{
public:
    Watch() = default;
    template <typename Function>
    requires(!std::is_same_v<std::remove_cvref_t<Function>, Watch> &&
             std::is_invocable_r_v<bool, Function &, const Step &>) Watch(Function &&function) :
        m_function(std::forward<Function>(function))
    {
    }

    bool operator()(const Step &step) const { return !m_function || m_function(step); }

private:
    std::function<bool(const Step &)> m_function;
};

} // namespace harrowby::app
