#include "ProgramName.h"

#include <algorithm>
#include <array>

namespace launcher {

namespace {

/// An interpreter, by its name without a version, with its options that take the argument behind them, and
/// those behind which no file name comes. Both lists are separated and framed by blanks.
struct Interpreter {
    std::string_view name;
    std::string_view withValue;
    std::string_view withoutFile;
};

constexpr std::array<Interpreter, 19> interpreters{
    {{"python", " -W -X ", " -c -m "}, {"pypy", " -W -X ", " -c -m "}, {"perl", " -I -M ", " -e -E "},
        {"ruby", " -I -r ", " -e "}, {"lua", " -l ", " -e "}, {"luajit", " -l ", " -e "},
        {"node", " -r --require --import --loader ", " -e --eval -p --print "},
        {"nodejs", " -r --require --import --loader ", " -e --eval -p --print "}, {"sh", " -o ", " -c "},
        {"bash", " -o -O --rcfile --init-file ", " -c "}, {"dash", " -o ", " -c "}, {"zsh", " -o ", " -c "},
        {"ksh", " -o ", " -c "}, {"java", " -cp -classpath --class-path -p --module-path ", " "},
        {"mono", " ", " "}, {"dotnet", " ", " "}, {"wine", " ", " "}, {"wine64", " ", " "},
        {"wine64-preloader", " ", " "}}};

std::string_view baseName(std::string_view path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    // Programs for Windows are given with their own separator.
    return path.substr(std::min(path.find_last_of("/\\") + 1, path.size()));
}

const Interpreter* interpreterNamed(std::string_view name)
{
    const auto find = [](std::string_view wanted) {
        const auto* const found = std::find_if(interpreters.begin(), interpreters.end(),
            [&](const Interpreter& interpreter) { return interpreter.name == wanted; });
        return found == interpreters.end() ? nullptr : found;
    };
    if (const Interpreter* exact = find(name))
        return exact;
    return find(name.substr(0, name.find_last_not_of("0123456789.") + 1));
}

bool lists(std::string_view list, std::string_view word)
{
    std::string framed = " ";
    framed.append(word).append(" ");
    return list.find(framed) != std::string_view::npos;
}

} // namespace

std::vector<std::string> splitArguments(std::string_view bytes)
{
    std::vector<std::string> arguments;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\0');
        arguments.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    }
    return arguments;
}

std::string programName(const std::vector<std::string>& arguments)
{
    if (arguments.empty())
        return {};
    // A shell that was started by login() has a dash in front.
    const std::string_view own = baseName(arguments[0]);
    const Interpreter* interpreter = interpreterNamed(own.substr(own.starts_with('-') ? 1 : 0));
    for (std::size_t i = 1; interpreter && i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--" && i + 1 < arguments.size())
            return std::string(baseName(arguments[i + 1]));
        if (argument == "-" || lists(interpreter->withoutFile, argument))
            break;
        if (argument.starts_with('-'))
            i += lists(interpreter->withValue, argument) ? 1 : 0;
        else if (!argument.empty())
            return std::string(baseName(argument));
    }
    return std::string(own);
}

std::string Naming::nameOf(const std::vector<std::string>& arguments) const
{
    const std::string name = chosen.empty() ? programName(arguments) : chosen;
    return device.empty() ? name : name + " on " + device;
}

} // namespace launcher
