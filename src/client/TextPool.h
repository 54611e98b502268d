#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

/// Keeps texts in few bytes: as they are, without a gap, and those that repeat only once. Repetition is
/// looked for among recent texts only, so that the search itself never takes more memory.
class TextPool {
public:
    /// Names a text in the pool; the empty text is 0.
    using Reference = std::uint64_t;

    Reference add(std::string_view text);
    /// Valid as long as the pool.
    std::string_view text(Reference reference) const;

private:
    static constexpr std::size_t recentTexts = 2048;

    Reference store(std::string_view text);
    char* place(Reference reference) const;

    std::vector<std::unique_ptr<char[]>> m_blocks;
    std::uint64_t m_end = 0;
    std::array<Reference, recentTexts> m_recent{};
};
