#include "ProcessEnd.h"

#include "GuardedFile.h"

#include <cctype>
#include <csignal>
#include <cstring>
#include <sstream>

#include <sys/wait.h>

namespace launcher {

ProcessEnd ProcessEnd::fromStatus(int status)
{
    if (WIFSIGNALED(status))
        return {Kind::Killed, WTERMSIG(status)};
    return {Kind::Exited, WEXITSTATUS(status)};
}

ProcessEnd ProcessEnd::ofZombie(pid_t pid)
{
    constexpr std::size_t sizeLimit = 4096;
    // Fields of the line behind the name, which ends with the last parenthesis and may hold anything.
    constexpr int fieldsBetweenStateAndStatus = 48;
    const std::string line = platform::readFile("/proc/" + std::to_string(pid) + "/stat", sizeLimit).bytes;
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos)
        return {};
    std::istringstream fields(line.substr(nameEnd + 1));
    std::string field;
    fields >> field;
    if (field != "Z")
        return {};
    for (int i = 0; i < fieldsBetweenStateAndStatus; ++i)
        fields >> field;
    int status = 0;
    return fields >> status ? fromStatus(status) : ProcessEnd{};
}

std::string signalText(int number)
{
    const char* name = sigabbrev_np(number);
    if (!name)
        return "signal " + std::to_string(number);
    std::string meaning = sigdescr_np(number);
    meaning[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(meaning[0])));
    return std::string("SIG") + name + " (" + meaning + ")";
}

} // namespace launcher
