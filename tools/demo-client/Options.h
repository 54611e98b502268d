#pragma once

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace demo {

enum class Scenario { Tour, Flood, Crash, Hostile };

/// What the command line asks for.
struct Options {
    Scenario scenario = Scenario::Tour;
    std::string socket = "Corvale"; ///< A path, or a name in the temporary folder.
    std::string name; ///< Name of the application that is played; empty for the scenario's own.
    std::chrono::milliseconds pace{60}; ///< Pause after each record.
    bool stay = false; ///< Keep the connection open at the end.
    std::uint32_t clients = 1;
    std::uint32_t count = 10000; ///< Records of a flood.
    std::uint32_t rate = 0; ///< Records per second of a flood; 0 for as fast as the socket takes them.
    bool help = false;
};

/// Thrown for a command line that makes no sense; the text says which part of it.
class OptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments that follow the program's name.
Options parseOptions(const std::vector<std::string>& arguments);

/// What --help prints.
const char* helpText();

} // namespace demo
