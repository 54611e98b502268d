#include "Options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace demo {

namespace {

struct NamedScenario {
    std::string_view name;
    Scenario scenario;
};

constexpr std::array namedScenarios{
    NamedScenario{"tour", Scenario::Tour},
    NamedScenario{"flood", Scenario::Flood},
    NamedScenario{"crash", Scenario::Crash},
    NamedScenario{"hostile", Scenario::Hostile},
};

constexpr std::array<std::string_view, 6> optionsWithValue{
    "--socket", "--name", "--pace", "--clients", "--count", "--rate"};

Scenario parseScenario(const std::string& text)
{
    const auto* found = std::find_if(namedScenarios.begin(), namedScenarios.end(),
        [&text](const NamedScenario& candidate) { return candidate.name == text; });
    if (found == namedScenarios.end())
        throw OptionError("Unknown scenario \"" + text + "\"; there are tour, flood, crash and hostile.");
    return found->scenario;
}

std::string parseText(const std::string& option, const std::string& text)
{
    if (text.empty())
        throw OptionError(option + " needs a text that is not empty.");
    return text;
}

std::uint32_t parseNumber(
    const std::string& option, const std::string& text, std::uint32_t least, std::uint32_t most)
{
    std::uint32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [position, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || position != end || value < least || value > most)
        throw OptionError(option + " needs a whole number from " + std::to_string(least) + " to "
            + std::to_string(most) + ", not \"" + text + "\".");
    return value;
}

void setValue(Options& options, const std::string& option, const std::string& text)
{
    if (option == "--socket")
        options.socket = parseText(option, text);
    else if (option == "--name")
        options.name = parseText(option, text);
    else if (option == "--pace")
        options.pace = std::chrono::milliseconds(parseNumber(option, text, 0, 60'000));
    else if (option == "--clients")
        options.clients = parseNumber(option, text, 1, 64);
    else if (option == "--count")
        options.count = parseNumber(option, text, 1, 100'000'000);
    else
        options.rate = parseNumber(option, text, 0, 1'000'000);
}

/// Options that the scenario would silently ignore are mistakes of the user's.
void checkThatAllApply(const std::vector<std::string>& given, Scenario scenario)
{
    for (const std::string& option : given) {
        const bool isFlood = scenario == Scenario::Flood;
        if ((option == "--count" || option == "--rate") && !isFlood)
            throw OptionError(option + " goes with the scenario flood only.");
        if (option == "--pace" && isFlood)
            throw OptionError("--pace does not go with the scenario flood; use --rate.");
        if (option == "--stay" && scenario == Scenario::Crash)
            throw OptionError("--stay does not go with the scenario crash.");
    }
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    std::optional<Scenario> scenario;
    std::vector<std::string> given;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument.empty() || argument.front() != '-') {
            if (scenario)
                throw OptionError("Only one scenario at a time, but there is also \"" + argument + "\".");
            scenario = parseScenario(argument);
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string option = argument.substr(0, equals);
        given.push_back(option);
        if (std::find(optionsWithValue.begin(), optionsWithValue.end(), option) != optionsWithValue.end()) {
            if (equals == std::string::npos && ++i == arguments.size())
                throw OptionError(option + " needs a value.");
            setValue(
                options, option, equals == std::string::npos ? arguments[i] : argument.substr(equals + 1));
        } else if (argument == "--stay") {
            options.stay = true;
        } else if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else {
            throw OptionError("Unknown option \"" + argument + "\".");
        }
    }
    options.scenario = scenario.value_or(Scenario::Tour);
    checkThatAllApply(given, options.scenario);
    return options;
}

const char* helpText()
{
    return R"(Usage: demo-client [SCENARIO] [OPTIONS]

Plays an application that uses the Corvale libraries and talks to corvale-gui.

Scenarios:
  tour     A session of a small game that shows everything the window can show. The default.
  flood    Many messages: 60 % GL errors, 20 % debug messages, 10 % texts, 10 % warnings.
  crash    Reports an error, then is killed in the middle of a record.
  hostile  Everything a client should not send: unknown types, texts without an end, full extension
           lists, negative numbers, broken UTF-8, control characters, records in small pieces.

Options:
  --socket PATH|NAME  The window's socket: a path if it has a slash, else a name in the temporary folder
                      (TMPDIR, else /tmp). Default: Corvale
  --name TEXT         The name under which the client shows up. Default: one for each scenario
  --pace MS           Milliseconds to pause after each record; 0 sends all at once. Not for flood.
                      Default: 60
  --stay              At the end keep the connection open until the window sends a stop notice or the client
                      gets SIGINT or SIGTERM, so that the wireframe switch can be tried. Not for crash.
  --clients N         Play N clients at once, each a process with a name and a PID of its own. Default: 1
  --count N           Messages of a flood. Default: 10000
  --rate R            Messages per second of a flood; 0 is as fast as the socket takes them. Default: 0
  --help              Print this text.

Each record that the window sends is printed on a line. SIGINT and SIGTERM end the session cleanly.
Exit codes: 0 the session ended as it should; 1 no server, or it closed the connection without a stop notice;
2 the options make no sense. A single client that plays crash is really killed, by SIGKILL.
)";
}

} // namespace demo
