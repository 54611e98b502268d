#include "Reports.h"

#include "FileReplacement.h"
#include "ProgramName.h"
#include "Wording.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace checks {

namespace {

using launcher::ReportKind;

std::string report(const Check& check, ReportKind kind)
{
    switch (kind) {
    case ReportKind::Json:
        return jsonReport(check);
    case ReportKind::Junit:
        return junitReport(check);
    case ReportKind::Sarif:
        return sarifReport(check);
    case ReportKind::Github:
        return githubReport(check);
    case ReportKind::Markdown:
        return markdownReport(check);
    default:
        return textReport(check);
    }
}

std::string write(const std::string& text, const std::string& path)
{
    if (path != "-")
        return platform::replaceFile(path, text).reason;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    return std::fflush(stdout) == 0 && isWritten ? "" : "standard output takes no more";
}

} // namespace

std::string Check::name() const
{
    std::string name;
    for (const RunResult& run : runs) {
        if (!name.empty() && !run.program.empty() && run.program != name)
            return launcher::programName(program);
        name = name.empty() ? run.program : name;
    }
    return name.empty() ? launcher::programName(program) : name;
}

std::string Check::file() const
{
    const std::string wanted = name();
    const auto found = std::find_if(program.begin(), program.end(), [&wanted](const std::string& argument) {
        return std::filesystem::path(argument).filename() == wanted;
    });
    return found == program.end() ? program.front() : *found;
}

bool writeReports(const Check& check, const std::vector<launcher::ReportRequest>& requests)
{
    bool isWritten = true;
    for (const launcher::ReportRequest& request : requests) {
        const std::string reason = write(report(check, request.kind), request.path);
        if (reason.empty())
            continue;
        std::fprintf(
            stderr, "corvale-run: Cannot write the report %s: %s.\n", request.path.c_str(), reason.c_str());
        isWritten = false;
    }
    return isWritten;
}

} // namespace checks
