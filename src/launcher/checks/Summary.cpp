#include "Summary.h"

#include "Wording.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace checks {

using sessions::Severity;

namespace {

constexpr std::size_t leastRows = 12;
/// Rows for the verdict, the rest of the list and the shell's prompt.
constexpr std::size_t otherRows = 9;
constexpr std::size_t widestDevice = 32;

enum class Color { Red = 31, Green = 32, Yellow = 33 };

/// Adds lines that are cut to the screen.
class Page {
public:
    explicit Page(const Screen& screen)
        : m_screen(screen)
    {
    }
    /// The first part of the line is in color; it has ASCII only.
    void add(const std::string& colored, Color color, const std::string& rest)
    {
        const std::size_t room = m_screen.columns - std::min(m_screen.columns, colored.size() + m_begun);
        m_begun = 0;
        if (m_screen.hasColors)
            m_text += "\x1B[" + std::to_string(static_cast<int>(color)) + "m" + colored + "\x1B[0m";
        else
            m_text += colored;
        m_text += cut(rest, room) + "\n";
    }
    /// The line that is added next goes on behind the text.
    void begin(const std::string& text)
    {
        m_text += text;
        m_begun = text.size();
    }
    void add(const std::string& line) { m_text += cut(line, m_screen.columns) + "\n"; }
    std::string text() const { return m_text; }

private:
    /// Counts characters, not bytes. Wide ones are seldom enough.
    static std::string cut(const std::string& text, std::size_t columns)
    {
        std::size_t characters = 0;
        for (std::size_t at = 0; at < text.size(); ++at) {
            const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80;
            if (begins && ++characters > columns)
                return std::string(sessions::cutText(text, at)).substr(0, at > 3 ? at - 3 : 0) + "...";
        }
        return text;
    }

    const Screen& m_screen;
    std::string m_text;
    std::size_t m_begun = 0; ///< Bytes of the line's beginning.
};

std::string padded(const std::string& text, std::size_t width)
{
    return text + std::string(width - std::min(width, text.size()), ' ');
}

std::string right(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

Color colorOf(Severity severity)
{
    return severity == Severity::Error  ? Color::Red
        : severity == Severity::Warning ? Color::Yellow
                                        : Color::Green;
}

/// What was found in a run, such as "3 errors, 1 warning".
std::string countsOf(const RunResult& run)
{
    std::string text;
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Message}) {
        if (const std::uint64_t count = run.findings.count(severity); count > 0)
            text +=
                (text.empty() ? "" : ", ") + counted(count, std::string(sessions::severityName(severity)));
    }
    return text.empty() ? "nothing found" : text;
}

void addRun(Page& page, const Check& check)
{
    const RunResult& run = check.runs.front();
    const bool isGood = check.verdict.status(run) == 0;
    page.begin("corvale-run: ");
    page.add(resultOf(run, check.verdict), isGood ? Color::Green : Color::Red,
        ": " + oneLine(check.name()) + " on " + oneLine(run.deviceName()) + ", " + countsOf(run) + ", "
            + counted(run.frames, "frame") + ", " + seconds(run.time));
    if (const std::string bad = badEnd(run); !bad.empty())
        page.add("  " + oneLine(bad));
}

void addTable(Page& page, const Check& check)
{
    const auto bad = static_cast<std::size_t>(std::count_if(check.runs.begin(), check.runs.end(),
        [&](const RunResult& run) { return check.verdict.status(run) != 0; }));
    const std::string name = oneLine(check.name());
    page.begin("corvale-run: ");
    if (bad == 0)
        page.add("passed", Color::Green, ": " + name + " on " + counted(check.runs.size(), "device"));
    else
        page.add("failed", Color::Red,
            ": " + name + " on " + grouped(bad) + " of " + counted(check.runs.size(), "device"));
    std::size_t width = std::string_view("Device").size();
    for (const RunResult& run : check.runs)
        width = std::clamp(run.deviceName().size(), width, widestDevice);
    constexpr std::size_t resultWidth = 16;
    page.add(padded("Result", resultWidth) + padded("Device", width)
        + "   Errors Warnings Messages   Frames      Time");
    for (const RunResult& run : check.runs) {
        const bool isGood = check.verdict.status(run) == 0;
        std::string numbers;
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Message})
            numbers += right(grouped(run.findings.count(severity)), 9);
        page.add(padded(resultOf(run, check.verdict), resultWidth), isGood ? Color::Green : Color::Red,
            padded(oneLine(run.deviceName()), width) + numbers + right(grouped(run.frames), 9)
                + right(seconds(run.time), 10));
    }
}

void addFinding(Page& page, const Check& check, const SharedFinding& shared)
{
    const sessions::Finding& finding = shared.finding;
    std::string line = " " + right(grouped(finding.count), 8) + " x  " + title(finding.signature);
    if (check.verdict.isKnown(finding))
        line += " (known)";
    if (const std::string where = frames(finding); !where.empty())
        line += ", " + where;
    if (check.runs.size() > 1)
        line += ", on "
            + (shared.devices.size() == 1 ? oneLine(shared.devices.front())
                                          : counted(shared.devices.size(), "device"));
    const std::string severity(sessions::severityName(finding.signature.severity));
    page.add("  " + padded(severity, 7), colorOf(finding.signature.severity), line);
    page.add("                      " + textBelowTitle(finding));
}

void addFindings(Page& page, const Check& check, std::size_t rows)
{
    const std::vector<SharedFinding> shared = sharedFindings(check.runs, check.verdict);
    const std::size_t count = std::min(shared.size(), rows / 2);
    for (std::size_t i = 0; i < count; ++i)
        addFinding(page, check, shared[i]);
    if (count < shared.size())
        page.add("  and " + counted(shared.size() - count, "kind")
            + " more; --report text=- prints them all, --report text=FILE writes them.");
    std::uint64_t others = 0;
    for (const RunResult& run : check.runs) {
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Message})
            others += run.findings.others(severity);
    }
    if (others > 0)
        page.add("  and " + grouped(others) + " of more kinds than are told apart.");
    const std::vector<sessions::Signature> gone = check.verdict.gone(check.runs);
    if (gone.empty())
        return;
    page.add("  " + counted(gone.size(), "known kind") + (gone.size() == 1 ? " was" : " were")
        + " not found any more; --write-baseline takes " + (gone.size() == 1 ? "it" : "them") + " out:");
    const std::size_t told = std::min(gone.size(), std::max<std::size_t>(rows / 2 - count, 1));
    for (std::size_t i = 0; i < told; ++i)
        page.add("    gone: " + title(gone[i]) + ": " + oneLine(gone[i].text));
}

} // namespace

Screen Screen::ofErrors()
{
    Screen screen;
    winsize size{};
    const char* terminal = std::getenv("TERM");
    const bool isTerminal = isatty(STDERR_FILENO) != 0;
    if (isTerminal && ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
        screen.columns = std::max<std::size_t>(size.ws_col, 40);
        screen.rows = size.ws_row;
    }
    const char* noColor = std::getenv("NO_COLOR");
    screen.hasColors =
        isTerminal && (!noColor || *noColor == '\0') && terminal && std::string_view(terminal) != "dumb";
    return screen;
}

Screen Screen::endless()
{
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max() / 2;
    return {.hasColors = false, .rows = most, .columns = most};
}

std::string summary(const Check& check, const Screen& screen)
{
    Page page(screen);
    const std::size_t rows = std::max(screen.rows, leastRows) - otherRows;
    if (check.runs.size() == 1)
        addRun(page, check);
    else
        addTable(page, check);
    const std::size_t taken = check.runs.size() == 1 ? 0 : std::min(check.runs.size(), rows / 2);
    addFindings(page, check, rows - taken);
    return page.text();
}

std::string textReport(const Check& check)
{
    return summary(check, Screen::endless());
}

} // namespace checks
