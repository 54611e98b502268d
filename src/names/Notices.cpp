#include "Notices.h"

#include <algorithm>
#include <array>

namespace notices {

namespace {

constexpr std::string_view deviceStart = "The program sees the profile ";
constexpr std::string_view versionsStart = " (";
constexpr std::string_view deviceEnd = ") in place of this machine.";
constexpr std::string_view exitStart = "Ended with exit status ";
constexpr std::string_view killStart = "Killed by ";

std::string joined(std::string_view start, std::string_view rest)
{
    return std::string(start).append(rest);
}

} // namespace

std::string device(std::string_view name, std::string_view versions)
{
    return joined(deviceStart, name).append(versionsStart).append(versions).append(deviceEnd);
}

std::optional<std::string_view> deviceOf(std::string_view text)
{
    if (!text.starts_with(deviceStart) || !text.ends_with(deviceEnd))
        return std::nullopt;
    text.remove_prefix(deviceStart.size());
    // Names may have parentheses as well.
    const std::size_t end = text.rfind(versionsStart);
    return end == std::string_view::npos || end == 0 ? std::nullopt : std::optional(text.substr(0, end));
}

std::string exited(int status)
{
    return joined(exitStart, std::to_string(status));
}

std::string killed(std::string_view signal)
{
    return joined(killStart, signal);
}

bool tellsEnd(std::string_view text)
{
    constexpr std::array starts{exitStart, killStart, endedAtOnce, timeIsOver, framesAreDone, goesOn};
    return std::any_of(
        starts.begin(), starts.end(), [text](std::string_view start) { return text.starts_with(start); });
}

} // namespace notices
