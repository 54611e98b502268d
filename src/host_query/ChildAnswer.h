#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace host_query {

/// What a child process has answered, or why it has not, as the rest of a sentence.
struct ChildAnswer {
    bool isGiven = false;
    std::string text;
};

/// Runs a function in a child process, so that what crashes or hangs there harms nothing. The child's
/// standard output leads nowhere. An exception is no answer either; its text is the reason. To be called
/// while there is one thread.
ChildAnswer askChild(
    const std::function<std::string()>& function, std::chrono::milliseconds limit, std::size_t mostBytes);

} // namespace host_query
