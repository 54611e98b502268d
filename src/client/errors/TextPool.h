#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

/// Keeps texts in few bytes: without gaps, and repeated ones only once. Only recent texts are searched for
/// repetitions, so that the search takes a fixed amount of memory.
class TextPool {
public:
    /// Names a text in the pool; the empty text is 0.
    using Reference = std::uint64_t;

    Reference add(std::string_view text);
    /// Valid as long as the pool.
    std::string_view text(Reference reference) const;

private:
    static constexpr std::size_t recentTexts = 2048;

    Reference append(std::string_view text);
    char* address(Reference reference) const;

    std::vector<std::unique_ptr<char[]>> m_blocks;
    std::uint64_t m_size = 0; ///< Bytes used, with the unused ends of full blocks.
    std::array<Reference, recentTexts> m_recent{};
};
