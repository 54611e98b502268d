#include "Numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace platform {

namespace {

std::string_view bareNumber(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    text = text.substr(first, text.find_last_not_of(blanks) - first + 1);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    return text;
}

template <typename Number> std::optional<Number> parseWhole(std::string_view text)
{
    text = bareNumber(text);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

template <typename Number> std::string formatPlain(Number value)
{
    std::array<char, 64> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return error == std::errc() ? std::string(buffer.data(), end) : std::string();
}

} // namespace

std::optional<std::int64_t> parseInteger(std::string_view text)
{
    return parseWhole<std::int64_t>(text);
}

std::optional<std::int32_t> parseInt32(std::string_view text)
{
    return parseWhole<std::int32_t>(text);
}

std::optional<std::uint32_t> parseHexadecimal(std::string_view text)
{
    text = bareNumber(text);
    if (!text.starts_with("0x") && !text.starts_with("0X"))
        return std::nullopt;
    text.remove_prefix(2);
    constexpr int base = 16;
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<double> parseReal(std::string_view text)
{
    const std::optional<double> value = parseWhole<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::string formatInteger(std::int64_t value)
{
    return formatPlain(value);
}

std::string formatReal(double value)
{
    return formatPlain(value);
}

} // namespace platform
