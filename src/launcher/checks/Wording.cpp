#include "Wording.h"

#include "PrintedText.h"
#include "ProcessEnd.h"
#include "Utf8.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include <string.h>

namespace checks {

namespace {

/// Bytes of the character that begins a text; 0 if none does.
std::size_t characterSize(std::string_view text)
{
    constexpr std::size_t longest = 4;
    for (std::size_t size = 1; size <= std::min(longest, text.size()); ++size) {
        if (platform::isUtf8(text.substr(0, size)))
            return size;
    }
    return 0;
}

/// U+FFFE and U+FFFF may stand in no XML; U+0080 to U+009F steer terminals.
bool isHarmful(std::string_view character)
{
    if (character.size() == 1) {
        const auto c = static_cast<unsigned char>(character.front());
        return (c < ' ' && c != '\n' && c != '\t') || c == 0x7F;
    }
    return character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF"
        || (character.size() == 2 && character[0] == '\xC2'
            && static_cast<unsigned char>(character[1]) < 0xA0);
}

} // namespace

std::string cleanText(std::string_view text)
{
    std::string clean;
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        if (size == 0 || isHarmful(text.substr(0, size)))
            clean += '?';
        else
            clean += text.substr(0, size);
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return clean;
}

std::string oneLine(std::string_view text)
{
    return launcher::printed(cleanText(text));
}

std::string fileFault(const std::string& what, const std::string& path, const std::string& reason)
{
    return reason.starts_with("Cannot ") ? reason : what + " " + path + ": " + reason;
}

std::string grouped(std::uint64_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t place = digits.size(); place > 3;) {
        place -= 3;
        digits.insert(place, 1, ',');
    }
    return digits;
}

std::string counted(std::uint64_t number, const std::string& what)
{
    return grouped(number) + " " + what + (number == 1 ? "" : "s");
}

std::string title(const sessions::Signature& signature)
{
    const std::string code = oneLine(signature.code);
    const std::string function = oneLine(signature.function);
    if (code.empty() && function.empty())
        return std::string(sessions::severityName(signature.severity));
    if (code.empty() || function.empty())
        return code + function;
    return code + " in " + function;
}

std::string textBelowTitle(const sessions::Finding& finding)
{
    const std::string text = oneLine(finding.example);
    const std::string beginning = title(finding.signature) + ": ";
    return text.starts_with(beginning) ? text.substr(beginning.size()) : text;
}

std::string frames(const sessions::Finding& finding)
{
    if (finding.firstFrame == ui::messages::noFrame)
        return {};
    if (finding.firstFrame == finding.lastFrame)
        return "frame " + grouped(finding.firstFrame);
    return "frames " + grouped(finding.firstFrame) + " to " + grouped(finding.lastFrame);
}

std::string seconds(std::chrono::milliseconds time)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", static_cast<double>(time.count()) / 1000);
    return text;
}

std::string resultOf(const RunResult& run, const Verdict& verdict)
{
    switch (run.end) {
    case RunResult::End::NotRun:
        return "not run";
    case RunResult::End::Unwatchable:
        return "not watched";
    case RunResult::End::TimeOver:
        return "time limit";
    case RunResult::End::Killed:
        return sigabbrev_np(run.number) ? "SIG" + std::string(sigabbrev_np(run.number))
                                        : launcher::signalText(run.number);
    case RunResult::End::Exited:
        if (run.number != 0)
            return "exit status " + std::to_string(run.number);
        break;
    case RunResult::End::FramesDone:
        break;
    }
    if (verdict.hasFailing(run))
        return "failed";
    return run.isWatched ? "passed" : "not watched";
}

std::string badEnd(const RunResult& run)
{
    switch (run.end) {
    case RunResult::End::NotRun:
    case RunResult::End::Unwatchable:
        return run.failure;
    case RunResult::End::TimeOver:
        return std::string("It was ended on the time limit")
            + (run.isHardEnd ? ", by force, since it did not end when it was asked to." : ".");
    case RunResult::End::Killed:
        return "It was killed by " + launcher::signalText(run.number) + ".";
    case RunResult::End::Exited:
        if (run.number != 0)
            return "It ended with exit status " + std::to_string(run.number) + ".";
        break;
    case RunResult::End::FramesDone:
        if (run.isHardEnd)
            return "After its frames it did not end when it was asked to, and was ended by force.";
        break;
    }
    return run.isWatched
        ? ""
        : "Nothing was watched: it has not called EGL where that can be seen. Programs that use GLX, or "
          "an own EGL, cannot be watched.";
}

std::vector<SharedFinding> sharedFindings(const std::vector<RunResult>& runs, const Verdict& verdict)
{
    sessions::Findings together;
    std::map<sessions::Signature, std::vector<std::string>> devices;
    for (const RunResult& run : runs) {
        for (const sessions::Finding& finding : run.findings.all()) {
            together.add(finding);
            devices[finding.signature].push_back(run.deviceName());
        }
    }
    std::vector<SharedFinding> shared;
    for (const sessions::Finding* finding : together.worstFirst())
        shared.push_back({*finding, devices[finding->signature]});
    std::stable_partition(shared.begin(), shared.end(),
        [&](const SharedFinding& entry) { return verdict.fails(entry.finding); });
    return shared;
}

} // namespace checks
