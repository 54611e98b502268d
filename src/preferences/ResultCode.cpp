#include "ResultCode.h"

#include <array>
#include <cstddef>

namespace {

constexpr std::array printableNames{"SUCCESS", "NO_VALUE", "INCORRECT_TYPE", "CRITICAL_ERROR"};

} // namespace

const char* printableName(ResultCode code)
{
    const auto index = static_cast<std::size_t>(code);
    return index < printableNames.size() ? printableNames[index] : nullptr;
}
