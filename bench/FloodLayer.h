#pragma once

#include <QString>

namespace flood {

/// What came of a flood of GL errors, each of which has a number.
struct ErrorFlood {
    double rate = 0; ///< Errors a second between the first and the last.
    int lost = 0;
    int doubled = 0;
    double windowWork = 0; ///< Microseconds of a processor that the window needs for each.
    double othersWork =
        0; ///< The same of program and launcher with their starts and ends; 0 for a plain sender.
    double costOfError = 0; ///< Nanoseconds of the program; 0 if it was a plain sender.
};

/// A real program of OpenGL ES makes so many errors as fast as it can. They go through the layer, its ring
/// and corvale-run into the window, and into a log if a path is given. The window may be stopped until the
/// program has made them all. All zero where there is no OpenGL ES. Throws std::runtime_error
/// where it cannot be measured.
ErrorFlood measureLayer(int errors, const QString& log = QString(), bool isWindowStopped = false);

/// A plain sender writes the same errors into the window's socket.
ErrorFlood measurePlainErrors(int errors);

} // namespace flood
