#include "TextPool.h"

#include <cstring>
#include <functional>

namespace {

constexpr std::uint64_t blockSize = 65536;

using Length = std::uint32_t; ///< Stands before each text.

} // namespace

TextPool::Reference TextPool::add(std::string_view text)
{
    if (text.empty())
        return 0;
    Reference& recent = m_recent[std::hash<std::string_view>()(text) % recentTexts];
    if (recent == 0 || this->text(recent) != text)
        recent = append(text.substr(0, blockSize - sizeof(Length)));
    return recent;
}

std::string_view TextPool::text(Reference reference) const
{
    if (reference == 0)
        return {};
    Length length = 0;
    const char* at = address(reference);
    std::memcpy(&length, at, sizeof length);
    return {at + sizeof length, length};
}

TextPool::Reference TextPool::append(std::string_view text)
{
    const auto length = static_cast<Length>(text.size());
    const std::uint64_t size = sizeof length + length;
    // A text never reaches from one block into the next.
    if (m_blocks.empty() || m_size % blockSize + size > blockSize || m_size % blockSize == 0) {
        m_size = m_blocks.size() * blockSize;
        m_blocks.push_back(std::unique_ptr<char[]>(new char[blockSize]));
    }
    const Reference reference = m_size + 1; // 0 is the empty text
    char* at = address(reference);
    std::memcpy(at, &length, sizeof length);
    std::memcpy(at + sizeof length, text.data(), text.size());
    m_size += size;
    return reference;
}

char* TextPool::address(Reference reference) const
{
    return m_blocks[(reference - 1) / blockSize].get() + (reference - 1) % blockSize;
}
