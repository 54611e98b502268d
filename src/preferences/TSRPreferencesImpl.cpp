#include "TSRPreferencesImpl.h"

#include "Hash.h"

#include <array>

TSRPreferencesFile::~TSRPreferencesFile()
{
    if (stream)
        std::fclose(stream);
}

TSRPreferencesImpl::~TSRPreferencesImpl() = default;

std::uint32_t TSRPreferencesImpl::stampOf(std::uint32_t modificationTime)
{
    std::array<char, 4> bytes{};
    for (char& byte : bytes) {
        byte = static_cast<char>(modificationTime & 0xFFU);
        modificationTime >>= 8U;
    }
    return platform::fnv1({bytes.data(), bytes.size()});
}
