#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <type_traits>

namespace layer {

/// One argument of a call, as the bits that CallText.h shows by the kind of its parameter: integers are
/// extended to 64 bits, floating-point numbers are those of a double, pointers their address.
struct Argument {
    std::uint64_t bits = 0;
};

template <std::signed_integral T> Argument argument(T value)
{
    return {static_cast<std::uint64_t>(static_cast<std::int64_t>(value))};
}

template <std::unsigned_integral T> Argument argument(T value)
{
    return {value};
}

template <std::floating_point T> Argument argument(T value)
{
    return {std::bit_cast<std::uint64_t>(static_cast<double>(value))};
}

template <typename T>
requires std::is_pointer_v<T> Argument argument(T value)
{
    return {reinterpret_cast<std::uintptr_t>(value)};
}

} // namespace layer
