#pragma once

#include <string>

/// Makes the file calls of the code under test fail or kill the process, one call after the other. For test
/// binaries that corvale_wrap_file_calls() was called for.
namespace file_faults {

/// The call of that number (from 1) does nothing and fails with the errno value.
void failCall(int number, int errorNumber);

/// The process is killed when it is about to make the call of that number.
void killAtCall(int number);

/// Every write takes at most that many bytes.
void shortWrites(unsigned int bytes);

/// The names of the calls since the last clear(), in order, each with a blank behind it.
const std::string& trace();

/// Back to normal. Returns whether the fault came up.
bool clear();

} // namespace file_faults
