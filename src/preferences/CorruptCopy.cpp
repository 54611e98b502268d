#include "CorruptCopy.h"

#include "GuardedFile.h"
#include "Limits.h"
#include "PropertyList.h"

#include <string>

namespace {

constexpr int mostCopies = 9;

} // namespace

platform::FileResult keepCorruptCopy(
    const std::filesystem::path& file, std::string_view content, std::filesystem::path& copy)
{
    std::filesystem::path candidate;
    for (int number = 1; number <= mostCopies; ++number) {
        candidate = file;
        candidate += number == 1 ? ".corrupt" : ".corrupt." + std::to_string(number);
        const platform::FileBytes there = platform::readFile(candidate, platform::limits::fileSize);
        if (there.ok && there.bytes == content) {
            copy = candidate;
            return {};
        }
        if (there.absent)
            break;
    }
    platform::FileResult result = platform::replaceFile(candidate, content);
    if (result)
        copy = candidate;
    return result;
}
