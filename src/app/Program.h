#pragma once

/// Starts the program and runs it to its end. Returns the event loop's exit code, or 0 after a failure to
/// start, which a message box has told.
int runProgram(int argc, char** argv);
