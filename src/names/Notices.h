#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Sentences in which the layer and the launcher tell the window what is known of a program beside its
/// records, and by which that is recognised.
namespace notices {

/// What people are told of a device, so that nobody takes it for the machine. The versions are in words.
std::string device(std::string_view name, std::string_view versions);
/// The name of the device in such a sentence; nothing in another text.
std::optional<std::string_view> deviceOf(std::string_view text);

std::string exited(int status);
/// The signal is in words, such as "SIGSEGV (segmentation fault)".
std::string killed(std::string_view signal);
inline constexpr std::string_view endedAtOnce =
    "The process ended at once; whether by itself or by a signal is not known.";
inline constexpr std::string_view timeIsOver = "Ended by corvale-run on the time limit";
inline constexpr std::string_view framesAreDone = "Ended by corvale-run after the frames that were asked for";
inline constexpr std::string_view goesOn =
    "The program that corvale-run was started for has ended; this process goes on without being watched.";

/// Whether a text begins as one of those that tell how a process ended.
bool tellsEnd(std::string_view text);

} // namespace notices
