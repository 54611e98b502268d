#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace launcher {

/// What lets a check fail; each includes those before it but for the last.
enum class FailOn { Error, Warning, Message, Never };

enum class ReportKind { Text, Json, Junit, Sarif, Github, Markdown };

/// A report that is to be written.
struct ReportRequest {
    ReportKind kind = ReportKind::Text;
    std::string path; ///< "-" for standard output.
};

/// What is asked of a check beside the program.
struct CheckOptions {
    FailOn failOn = FailOn::Error;
    std::string baseline; ///< Path; empty for none.
    std::string newBaseline; ///< Path to be written; empty for none.
    std::vector<ReportRequest> reports;
    std::vector<std::string> profiles; ///< Names, files, and patterns of names, as given.
    bool allProfiles = false;
    int jobs = 1;
    /// A display of its own is wanted: "x11", "wayland", or empty for either.
    std::optional<std::string> headless;
};

/// Nothing if there is none of that name.
std::optional<FailOn> failOnOfName(std::string_view name);
/// From KIND=FILE. Empty, or why it is refused.
std::string addReport(std::string_view text, CheckOptions& options);

} // namespace launcher
