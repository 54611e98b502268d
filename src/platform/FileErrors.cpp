#include "FileErrors.h"

#include <exception>
#include <system_error>

namespace platform {

std::string errorText(int number)
{
    return std::generic_category().message(number);
}

std::string readablePath(const std::filesystem::path& path)
{
    try {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    } catch (const std::exception&) {
        return "a file with an unreadable name";
    }
}

} // namespace platform
