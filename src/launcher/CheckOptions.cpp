#include "CheckOptions.h"

#include <algorithm>
#include <array>
#include <utility>

namespace launcher {

namespace {

constexpr std::array<std::pair<std::string_view, FailOn>, 4> failOnNames{{{"error", FailOn::Error},
    {"warning", FailOn::Warning}, {"message", FailOn::Message}, {"never", FailOn::Never}}};

constexpr std::array<std::pair<std::string_view, ReportKind>, 6> reportNames{
    {{"text", ReportKind::Text}, {"json", ReportKind::Json}, {"junit", ReportKind::Junit},
        {"sarif", ReportKind::Sarif}, {"github", ReportKind::Github}, {"markdown", ReportKind::Markdown}}};

template <typename Names> auto find(const Names& names, std::string_view name)
{
    return std::find_if(names.begin(), names.end(), [&](const auto& entry) { return entry.first == name; });
}

} // namespace

std::optional<FailOn> failOnOfName(std::string_view name)
{
    const auto found = find(failOnNames, name);
    return found == failOnNames.end() ? std::nullopt : std::optional(found->second);
}

std::string addReport(std::string_view text, CheckOptions& options)
{
    const std::size_t sign = text.find('=');
    const auto found = find(reportNames, text.substr(0, sign));
    if (found == reportNames.end() || sign == std::string_view::npos || sign + 1 == text.size())
        return "A report is KIND=FILE, and its kind text, json, junit, sarif, github or markdown.";
    options.reports.push_back({found->second, std::string(text.substr(sign + 1))});
    return {};
}

} // namespace launcher
