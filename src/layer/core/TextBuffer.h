#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace layer {

/// A text of limited size, built without memory of the program's heap. What does not fit is cut.
template <std::size_t Capacity> class TextBuffer {
public:
    TextBuffer& operator<<(std::string_view text)
    {
        const std::size_t length = std::min(text.size(), Capacity - m_size);
        std::memcpy(m_bytes.data() + m_size, text.data(), length);
        m_size += length;
        return *this;
    }
    TextBuffer& operator<<(const char* text) { return *this << std::string_view(text ? text : "(none)"); }
    TextBuffer& operator<<(char letter) { return *this << std::string_view(&letter, 1); }
    template <typename Number>
    requires std::is_arithmetic_v<Number> TextBuffer& operator<<(Number number)
    {
        std::array<char, 40> digits{};
        const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
        return *this << std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
    }
    /// "0x" and the digits.
    TextBuffer& hexadecimal(std::uint64_t number)
    {
        std::array<char, 16> digits{};
        const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
        return *this << "0x"
                     << std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
    }

    std::string_view text() const { return {m_bytes.data(), m_size}; }
    bool isEmpty() const { return m_size == 0; }

private:
    std::array<char, Capacity> m_bytes;
    std::size_t m_size = 0;
};

} // namespace layer
