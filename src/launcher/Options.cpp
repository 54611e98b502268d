#include "Options.h"

#include <array>
#include <string_view>

#include <getopt.h>

namespace launcher {

namespace {

constexpr const char* usage = R"(usage: corvale-run [options] [--] program [arguments...]

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
  --quiet         do not say when a program cannot be watched
  --require       fail when the program cannot be watched
  --help          show this text and exit
  --version       show the version and exit

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

Exit status: that of the program, and corvale-run ends by the same signal as the program. Else
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
    profile,
    listProfiles,
    makeProfile,
    quiet,
    require,
    showOutput,
    help,
    version
};

constexpr std::array<option, 13> known{{{"name", required_argument, nullptr, name},
    {"via", required_argument, nullptr, way}, {"no-errors", no_argument, nullptr, noErrors},
    {"log", required_argument, nullptr, log}, {"profile", required_argument, nullptr, profile},
    {"list-profiles", no_argument, nullptr, listProfiles},
    {"make-profile", required_argument, nullptr, makeProfile}, {"quiet", no_argument, nullptr, quiet},
    {"require", no_argument, nullptr, require}, {"show-output", no_argument, nullptr, showOutput},
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
        if (options.profile->empty())
            return "Which profile? --list-profiles tells which there are.";
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
        break;
    }
    return {};
}

} // namespace

Options readOptions(int argc, char* const* argv)
{
    Options options;
    optind = 0; // Starts getopt anew.
    opterr = 0;
    int choice = -1;
    while ((choice = getopt_long(argc, argv, "+:", known.data(), nullptr)) != -1) {
        if (choice == help)
            return answer(usage);
        if (choice == version)
            return answer("corvale-run " CORVALE_VERSION "\n");
        if (choice == ':')
            return refuse("A value is missing behind the option", argv[optind - 1]);
        if (choice == '?')
            return refuse("There is no such option, or it takes no value:", argv[optind - 1]);
        if (const std::string why = take(choice, options); !why.empty())
            return refuse(why);
    }
    options.program.assign(argv + optind, argv + argc);
    if (options.request != Options::Request::Run && !options.program.empty())
        return refuse("Profiles are listed and made without a program:", options.program.front());
    if (options.request == Options::Request::Run && options.program.empty())
        return refuse("Which program?");
    return options;
}

} // namespace launcher
