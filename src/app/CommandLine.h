#pragma once

#include <string>

/// What the arguments of a start ask for. Options of Qt, such as `-style fusion`, are passed over.
struct CommandLine {
    enum class Request { Start, Answer, Refuse };

    Request request = Request::Start;
    /// Whole lines for standard output (Answer) or standard error (Refuse).
    std::string text;
};

/// Looks at the arguments behind the program's name; the first one that is no option of Qt decides.
CommandLine readCommandLine(int argc, const char* const* argv);
