#include "CommandLine.h"

#include "Product.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr const char* usage = R"(usage: corvale-gui [options] [SESSION-FILE...]

Shows what OpenGL ES and EGL applications report that connect to it. Only one instance runs for a user.
Sessions that were saved are shown like applications that have ended.

  -h, --help      show this text and exit
  -v, --version   show the version and exit

Options of Qt are understood as well, for example:
  -style NAME         style of the widgets, such as fusion
  -geometry WxH+X+Y   size and place of the window
  -platform NAME      window system, such as xcb or wayland

Environment:
  TMPDIR                folder of the sockets, /tmp where it is not set
  CORVALE_PROFILE_PATH  folder of your hardware profiles, as long as the preferences name none
  XDG_CONFIG_HOME       folder below which the preferences are kept, ~/.config where it is not set

Exit status: 0 after an ordinary end, and where another instance is running; 2 for arguments that are not understood.
)";

/// Options that Qt takes together with the argument behind them, and those that stand alone.
constexpr std::array<std::string_view, 16> qtOptionsWithValue{"style", "stylesheet", "platform",
    "platformpluginpath", "platformtheme", "plugin", "qwindowgeometry", "qwindowicon", "qwindowtitle",
    "session", "display", "geometry", "title", "icon", "fontengine", "qmljsdebugger"};
constexpr std::array<std::string_view, 5> qtSwitches{"reverse", "widgetcount", "nograb", "dograb", "sync"};

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// How many arguments an option of Qt takes up; 0 for what is none.
int lengthOfQtOption(std::string_view argument)
{
    const std::size_t dashes = argument.starts_with("--") ? 2 : 1;
    if (!argument.starts_with('-') || argument.size() == dashes)
        return 0;
    argument.remove_prefix(dashes);
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    if (contains(qtOptionsWithValue, name))
        return equals == std::string_view::npos ? 2 : 1;
    return contains(qtSwitches, name) ? 1 : 0;
}

CommandLine refuse(std::string_view kind, std::string_view argument)
{
    std::string text = "corvale-gui: ";
    text.append(kind).append(" '").append(argument).append("'\n");
    return {CommandLine::Request::Refuse, text + "Try 'corvale-gui --help'.\n"};
}

} // namespace

CommandLine readCommandLine(int argc, const char* const* argv)
{
    CommandLine commandLine;
    bool areOptionsOver = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (areOptionsOver || (!argument.empty() && !argument.starts_with('-'))) {
            commandLine.files.emplace_back(argument);
            continue;
        }
        if (argument == "--") {
            areOptionsOver = true;
            continue;
        }
        if (argument == "-h" || argument == "--help")
            return {CommandLine::Request::Answer, usage};
        if (argument == "-v" || argument == "--version")
            return {CommandLine::Request::Answer,
                "Corvale GUI " + product::version().toStdString() + " (Qt " + qVersion() + ")\n"};
        const int length = lengthOfQtOption(argument);
        if (length == 0)
            return refuse(argument.starts_with('-') ? "unknown option" : "unexpected argument", argument);
        if (i + length > argc)
            return refuse("a value is missing behind", argument);
        i += length - 1;
    }
    return commandLine;
}
