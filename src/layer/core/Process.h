#pragma once

#include "RingWriter.h"

#include <string>
#include <vector>

namespace layer {

/// What the launcher asked for, from the environment of the program.
struct Options {
    std::string socket; ///< Path of the launcher's control socket; empty without a launcher.
    std::vector<std::string> hostLibraries; ///< The machine's own EGL drivers, in order.
    std::string
        device; ///< Path of the table of the device that the program is to see; empty for the machine.
    bool errors = true; ///< Whether errors are looked for.
    bool debugOutput = true; ///< Whether drivers may tell of errors by themselves; else each call asks.
    bool strict = false; ///< Context creation mode of the user's preferences.
};

const Options& options();

/// Where this process's records go; null if nobody takes them. The first call greets the launcher, and so
/// does the first one after a fork.
ring::Writer* writer();

/// How the library came into the program; told in the greeting.
enum class Via : std::uint32_t { VendorLibrary = 0, Preload = 1 };
void setVia(Via via);

/// Whether this is the first call with that flag in this process; the child of a fork counts as another
/// process.
bool isFirst(std::atomic_flag& flag);

} // namespace layer
