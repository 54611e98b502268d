#pragma once

#include <string>
#include <vector>

/// What the arguments of a start ask for. Options of Qt, such as `-style fusion`, are passed over.
struct CommandLine {
    enum class Request { Start, Answer, Refuse };

    Request request = Request::Start;
    /// Whole lines for standard output (Answer) or standard error (Refuse).
    std::string text;
    /// Session files that are to be shown.
    std::vector<std::string> files{};
};

/// Looks at the arguments behind the program's name. The first one that is neither an option of Qt nor a file
/// decides.
CommandLine readCommandLine(int argc, const char* const* argv);
