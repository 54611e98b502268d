#pragma once

/// SIGINT and SIGTERM ask for a clean end instead of killing the program.
namespace demo::interruption {

/// From now on the two signals are only noted.
void watch();

/// True after one of the two signals.
bool isRequested();

} // namespace demo::interruption
