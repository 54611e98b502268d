#pragma once

namespace platform {

/// Turns the requests to end (SIGTERM, SIGINT, SIGHUP) into bytes on a pipe, so that a program can end in its
/// own way. To be called once. Returns the descriptor to read from; -1 where there are no such signals or the
/// pipe cannot be had.
int catchTerminationSignals();

} // namespace platform
