#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace launcher {

/// Arguments as /proc/PID/cmdline has them: each ends with a NUL.
std::vector<std::string> splitArguments(std::string_view bytes);

/// What a program is called by people: the file name of its first argument, or that of the script that an
/// interpreter runs, such as "game.py" for `python3 game.py`.
std::string programName(const std::vector<std::string>& arguments);

/// How the clients of one launcher are named.
struct Naming {
    std::string chosen; ///< By the user, instead of the program's name; empty for none.
    std::string device = {}; ///< Which device the programs see, if not the machine.

    /// Such as "game.py on Hadlow Tarn 10".
    std::string nameOf(const std::vector<std::string>& arguments) const;
};

} // namespace launcher
