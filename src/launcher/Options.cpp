#include "Options.h"

#include "Numbers.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

#include <getopt.h>

namespace launcher {

namespace {

constexpr const char* usage = R"(usage: corvale-run [options] [--] program [arguments...]
       corvale-run --check [options] [--] program [arguments...]
       corvale-run --compare FILE FILE

Runs an OpenGL ES program and shows in Corvale GUI what it does. The program gets its terminal, its standard streams and
its signals as without corvale-run. If no window is open, it runs all the same, and a window that is opened later
shows what has come until then.

  --name NAME     title of the tab, instead of the program's name
  --via WAY       how to get between the program and its driver: vendor (default; a vendor library of libglvnd) or
                  preload (for systems without libglvnd)
  --no-errors     do not look for errors after each call
  --show-output   show also what the program writes on its standard output and error, line by line, and its exit status
                  at the end; see below
  --log FILE      write one line for each message into FILE as well, which is replaced
  --profile NAME  let the program see the device of a profile in place of this machine: one of the window's profiles
                  by its name, a file, or Host for none. Without this option it is the one that is chosen in the window
  --list-profiles print the names of the profiles and exit
  --make-profile FILE
                  write what EGL and OpenGL ES of this machine can do as a profile into FILE and exit
  --session FILE  record everything into FILE, to be opened in the window; an older session there is replaced
  --quiet         do not say when a program cannot be watched; with --check, print no summary
  --require       fail when the program cannot be watched
  --help          show this text and exit
  --version       show the version and exit

Checks: fail when the program makes errors, without a window, as in continuous integration.
  --check         watch the program and print on standard error what was found, the worst first
  --profile NAME  as above; with several, or names with * and ?, the program runs on each, and there is a table
  --all-profiles  run it on every profile
  --jobs N        run it on N profiles at a time (1); what each writes is shown when it ends
  --fail-on WHAT  error (default), warning, message, or never
  --baseline FILE findings that are known: they do not count, and those that are gone are told
  --write-baseline FILE
                  write what was found into FILE; it does not count then
  --report KIND=FILE
                  write a report, - for standard output: text, json, junit, sarif, github or markdown; may be repeated
  --timeout S     end the program after S seconds, politely and three seconds later for good
  --frames N      end the program after N frames, in the same way; this is no failure
  --headless[=KIND]
                  give the program a display that nobody sees: x11 (Xvfb), wayland (weston), or what is installed
  --compare       print what differs between two sessions or JSON reports

A program that is no 64-bit program of this machine, is linked statically, or gets the rights of another user when it
starts cannot be watched. It runs as it would alone, and one line on standard error says why.

With --show-output the program writes to corvale-run, which passes on what comes: through pipes, or through terminals
where corvale-run itself writes to a terminal or to /dev/null. Many programs keep what they write into a pipe until it
is some kilobytes. When nobody reads the standard output any more, the program gets a broken pipe as it would alone; its
standard error is read on, without passing it on. Processes that outlive the program cannot write there any more.

With a profile the program's title ends in the profile's name. What of the profile cannot be understood is told on
standard error and left out. A program that cannot be watched sees this machine.

Environment:
  CORVALE_PROFILE_PATH
                   folder of your profiles where none is chosen in the window
  TMPDIR           folder of the window's socket, /tmp where it is not set
  XDG_RUNTIME_DIR  where corvale-run keeps a private folder while it runs; else TMPDIR, else /tmp

Exit status of a check: that of the program if it is not 0. Else
  0    nothing was found that lets it fail
  3    something was found; with --compare: there are differences
  4    nothing was watched: the program cannot be, or has not called EGL
  124  the time was over

Exit status else: that of the program, and corvale-run ends by the same signal as the program. Else
  1    with --require: the program has ended with status 0, but never used EGL where it could be watched;
       with --make-profile: this machine has no OpenGL ES, or the file cannot be written
  2    the arguments are not understood, there is no such profile, or the log cannot be written
  126  the program cannot be run or, with --require, not be watched
  127  the program was not found
)";

enum Choice {
    name = 256,
    way,
    noErrors,
    log,
    session,
    profile,
    listProfiles,
    makeProfile,
    quiet,
    require,
    showOutput,
    check,
    compare,
    allProfiles,
    jobs,
    failOn,
    baseline,
    writeBaseline,
    report,
    timeout,
    frames,
    headless,
    help,
    version
};

constexpr std::array<option, 25> known{{{"name", required_argument, nullptr, name},
    {"via", required_argument, nullptr, way}, {"no-errors", no_argument, nullptr, noErrors},
    {"log", required_argument, nullptr, log}, {"profile", required_argument, nullptr, profile},
    {"list-profiles", no_argument, nullptr, listProfiles},
    {"make-profile", required_argument, nullptr, makeProfile}, {"quiet", no_argument, nullptr, quiet},
    {"require", no_argument, nullptr, require}, {"show-output", no_argument, nullptr, showOutput},
    {"session", required_argument, nullptr, session}, {"check", no_argument, nullptr, check},
    {"compare", no_argument, nullptr, compare}, {"all-profiles", no_argument, nullptr, allProfiles},
    {"jobs", required_argument, nullptr, jobs}, {"fail-on", required_argument, nullptr, failOn},
    {"baseline", required_argument, nullptr, baseline},
    {"write-baseline", required_argument, nullptr, writeBaseline},
    {"report", required_argument, nullptr, report}, {"timeout", required_argument, nullptr, timeout},
    {"frames", required_argument, nullptr, frames}, {"headless", optional_argument, nullptr, headless},
    {"help", no_argument, nullptr, help}, {"version", no_argument, nullptr, version},
    {nullptr, 0, nullptr, 0}}};

Options refuse(const std::string& why, const std::string& argument = {})
{
    Options options;
    options.request = Options::Request::Refuse;
    options.text = "corvale-run: " + why;
    if (!argument.empty())
        options.text.append(" '").append(argument).append("'");
    options.text += "\nTry 'corvale-run --help'.\n";
    return options;
}

Options answer(const std::string& text)
{
    Options options;
    options.request = Options::Request::Answer;
    options.text = text;
    return options;
}

/// Takes an option of checks, with its value if it has one. Empty, or why it is refused.
std::string takeForCheck(int choice, const char* value, Options& options)
{
    CheckOptions& checks = options.check;
    const std::string_view text = value ? value : "";
    switch (choice) {
    case allProfiles:
        checks.allProfiles = true;
        return {};
    case headless:
        checks.headless = text;
        return text.empty() || text == "x11" || text == "wayland" ? "" : "A display is x11 or wayland.";
    case jobs: {
        constexpr int most = 64;
        checks.jobs = platform::parseInt32(text).value_or(0);
        return checks.jobs > 0 && checks.jobs <= most ? "" : "The number of jobs is 1 to 64.";
    }
    case failOn: {
        const std::optional<FailOn> wanted = failOnOfName(text);
        checks.failOn = wanted.value_or(FailOn::Error);
        return wanted ? "" : "A check may fail on error, warning, message or never.";
    }
    case baseline:
        checks.baseline = text;
        return text.empty() ? "The baseline needs a file name." : "";
    case writeBaseline:
        checks.newBaseline = text;
        return text.empty() ? "The baseline needs a file name." : "";
    case report:
        return addReport(text, checks);
    case timeout: {
        constexpr double longest = 1e6;
        const double seconds = std::clamp(platform::parseReal(text).value_or(0), 0.0, longest);
        options.timeLimit = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1e3));
        return options.timeLimit.count() > 0 ? "" : "The time limit is a number of seconds above 0.";
    }
    case frames: {
        const std::int32_t count = platform::parseInt32(text).value_or(0);
        options.frameLimit = static_cast<std::uint32_t>(std::max(count, 0));
        return count > 0 ? "" : "The number of frames must be above 0.";
    }
    default:
        return {};
    }
}

/// Takes one option that stands alone or has its value in `optarg`. Empty, or why it is refused.
std::string take(int choice, Options& options)
{
    switch (choice) {
    case name:
        options.name = optarg;
        break;
    case way:
        if (std::string_view(optarg) != "vendor" && std::string_view(optarg) != "preload")
            return "The ways to get in between are vendor and preload.";
        options.via = std::string_view(optarg) == "preload" ? Via::Preload : Via::Vendor;
        break;
    case noErrors:
        options.noErrors = true;
        break;
    case log:
        options.log = optarg;
        if (options.log.empty())
            return "The log needs a file name.";
        break;
    case profile:
        options.profile = optarg;
        options.check.profiles.emplace_back(optarg);
        if (options.profile->empty())
            return "Which profile? --list-profiles tells which there are.";
        break;
    case session:
        options.session = optarg;
        if (options.session.empty())
            return "The session needs a file name.";
        break;
    case check:
        options.request = Options::Request::Check;
        break;
    case compare:
        options.request = Options::Request::Compare;
        break;
    case listProfiles:
        options.request = Options::Request::ListProfiles;
        break;
    case makeProfile:
        options.request = Options::Request::MakeProfile;
        options.made = optarg;
        if (options.made.empty())
            return "The profile needs a file name.";
        break;
    case quiet:
        options.quiet = true;
        break;
    case require:
        options.require = true;
        break;
    case showOutput:
        options.showOutput = true;
        break;
    default:
        return takeForCheck(choice, optarg, options);
    }
    return {};
}

/// Whether two paths lead to one file, which need not be there. What is no regular file can be shared.
bool isSameFile(const std::string& one, const std::string& other)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (one.empty() || one == "-" || (fs::exists(one, error) && !fs::is_regular_file(one, error)))
        return false;
    const auto whole = [](const std::string& path) {
        std::error_code fault;
        const fs::path absolute = fs::absolute(path, fault);
        const fs::path canonical = fs::weakly_canonical(absolute, fault);
        return fault ? absolute.lexically_normal() : canonical;
    };
    return !other.empty() && (whole(one) == whole(other) || fs::equivalent(one, other, error));
}

/// Empty, or which options would overwrite each other's file.
std::string fileClash(const Options& options)
{
    const CheckOptions& checks = options.check;
    std::vector<std::pair<std::string, std::string>> files{{"--log", options.log},
        {"--session", options.session}, {"--baseline", checks.baseline},
        {"--write-baseline", checks.newBaseline}};
    for (const ReportRequest& request : checks.reports)
        files.emplace_back("--report", request.path);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const auto& [option, path] = files[i];
        for (std::size_t j = i + 1; j < files.size(); ++j) {
            const auto& [other, otherPath] = files[j];
            // A baseline may be read first and then be written.
            const bool mayShare = option == "--baseline" && other == "--write-baseline";
            if (!mayShare && isSameFile(path, otherPath))
                return std::string(option).append(" and ").append(other).append(" both name ").append(path)
                    + "; each needs a file of its own.";
        }
    }
    return {};
}

/// Empty, or why the options do not fit each other.
std::string fault(const Options& options, bool hasCheckOptions)
{
    using Request = Options::Request;
    const bool isRun = options.request == Request::Run || options.request == Request::Check;
    if (options.request == Request::Compare)
        return options.program.size() == 2 ? "" : "Two sessions or JSON reports are compared.";
    if (!isRun)
        return options.program.empty() ? "" : "Profiles are listed and made without a program.";
    if (options.program.empty())
        return "Which program?";
    if (std::string clash = fileClash(options); !clash.empty())
        return clash;
    if (options.request == Request::Check)
        return {};
    if (options.check.profiles.size() > 1)
        return "Several profiles are for --check.";
    return hasCheckOptions ? "Some of these options need --check." : "";
}

} // namespace

Options readOptions(int argc, char* const* argv)
{
    Options options;
    optind = 0; // Starts getopt anew.
    opterr = 0;
    int choice = -1;
    bool hasCheckOptions = false;
    while ((choice = getopt_long(argc, argv, "+:", known.data(), nullptr)) != -1) {
        if (choice == help)
            return answer(usage);
        if (choice == version)
            return answer("corvale-run " CORVALE_VERSION "\n");
        if (choice == ':')
            return refuse("A value is missing behind the option", argv[optind - 1]);
        if (choice == '?')
            return refuse("There is no such option, or it takes no value:", argv[optind - 1]);
        hasCheckOptions = hasCheckOptions || choice >= allProfiles;
        if (const std::string why = take(choice, options); !why.empty())
            return refuse(why);
    }
    options.program.assign(argv + optind, argv + argc);
    if (const std::string why = fault(options, hasCheckOptions); !why.empty())
        return refuse(why);
    return options;
}

} // namespace launcher
