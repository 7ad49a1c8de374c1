// SPDX-License-Identifier: MIT
#pragma once

#include <cassert>
#include <cstddef>
#include <optional>
#include <utility>
#include <variant>

namespace harrowby {

/// The reason why there is no value: `return Unexpected(reason);`
template <typename E>
class Unexpected
{
public:
    explicit Unexpected(E error) : m_error(std::move(error)) {}
    [[nodiscard]] const E &error() const & { return m_error; }
    [[nodiscard]] E &&error() && { return std::move(m_error); }

private:
    E m_error;
};

/// A value, or the reason why there is none. It has the shape of C++23's std::expected, which takes its place once
/// every compiler that builds this project has it; what may merely be absent is a std::optional. Asking a failed result
/// for its value, or a good one for its error, is an error of the program.
template <typename T, typename E>
class [[nodiscard]] Result
{
public:
    // Implicit, so that a function returns either as it is.
    Result(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    Result(Unexpected<E> error) : m_state(std::in_place_index<1>, std::move(error).error()) {}

    [[nodiscard]] bool has_value() const noexcept { return m_state.index() == 0; }
    explicit operator bool() const noexcept { return has_value(); }

    [[nodiscard]] T &operator*() & { return *std::get_if<0>(checked(0)); }
    [[nodiscard]] const T &operator*() const & { return *std::get_if<0>(checked(0)); }
    [[nodiscard]] T &&operator*() && { return std::move(*std::get_if<0>(checked(0))); }
    [[nodiscard]] T *operator->() { return &**this; }
    [[nodiscard]] const T *operator->() const { return &**this; }
    template <typename U>
    [[nodiscard]] T value_or(U &&otherwise) const &
    {
        return has_value() ? **this : static_cast<T>(std::forward<U>(otherwise));
    }

    [[nodiscard]] const E &error() const & { return *std::get_if<1>(checked(1)); }
    [[nodiscard]] E &&error() && { return std::move(*std::get_if<1>(checked(1))); }

private:
    using State = std::variant<T, E>;

    State *checked([[maybe_unused]] std::size_t index)
    {
        assert(m_state.index() == index);
        return &m_state;
    }
    const State *checked([[maybe_unused]] std::size_t index) const
    {
        assert(m_state.index() == index);
        return &m_state;
    }

    State m_state;
};

/// Something that was done, or the reason why it was not.
template <typename E>
class [[nodiscard]] Result<void, E>
{
public:
    Result() = default;
    Result(Unexpected<E> error) : m_error(std::move(error).error()) {}

    [[nodiscard]] bool has_value() const noexcept { return !m_error; }
    explicit operator bool() const noexcept { return has_value(); }

    [[nodiscard]] const E &error() const &
    {
        assert(m_error);
        return *m_error;
    }
    [[nodiscard]] E &&error() &&
    {
        assert(m_error);
        return std::move(*m_error);
    }

private:
    std::optional<E> m_error;
};

} // namespace harrowby
