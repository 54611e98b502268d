#pragma once

#include "RunResult.h"
#include "Verdict.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// How checks speak of what they found.
namespace checks {

/// A text of a program as UTF-8 that may stand anywhere: control characters but line breaks and tabs, and
/// bytes that are no character, are "?".
std::string cleanText(std::string_view text);
/// The same on one line.
std::string oneLine(std::string_view text);

/// What is wrong with a file, whose name is said once: reasons of the file layer have it already.
std::string fileFault(const std::string& what, const std::string& path, const std::string& reason);

/// Such as "1,204".
std::string grouped(std::uint64_t number);
/// Such as "1 error" and "3 errors".
std::string counted(std::uint64_t number, const std::string& what);

/// Such as "GL_INVALID_ENUM in glEnable".
std::string title(const sessions::Signature& signature);
/// The text of a finding on one line, without its beginning where that says what the title says.
std::string textBelowTitle(const sessions::Finding& finding);
/// Such as "frame 3" or "frames 3 to 812"; empty if none is known.
std::string frames(const sessions::Finding& finding);
std::string seconds(std::chrono::milliseconds time);

/// In a word or two, such as "passed", "failed", "SIGSEGV", "exit status 3".
std::string resultOf(const RunResult& run, const Verdict& verdict);
/// How the run ended if that is no good end, as a sentence; empty else.
std::string badEnd(const RunResult& run);

/// A finding of one or several runs.
struct SharedFinding {
    sessions::Finding finding; ///< Of all runs together.
    std::vector<std::string> devices;
};
/// What was found in all runs, the worst first: first what lets the check fail.
std::vector<SharedFinding> sharedFindings(const std::vector<RunResult>& runs, const Verdict& verdict);

} // namespace checks
