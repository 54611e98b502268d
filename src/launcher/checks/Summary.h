#pragma once

#include "Reports.h"

#include <string>

namespace checks {

/// How a text may look.
struct Screen {
    bool hasColors = false;
    std::size_t rows = 24;
    std::size_t columns = 100;

    /// That of standard error.
    static Screen ofErrors();
    /// Without an end, for files.
    static Screen endless();
};

/// What the user reads at the end of a check: the verdict, the table of devices, and the worst findings, as
/// many as fit the screen.
std::string summary(const Check& check, const Screen& screen);

} // namespace checks
