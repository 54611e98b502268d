#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// Finds a text in UTF-8 texts, without regard to case.
class TextSearch {
public:
    explicit TextSearch(const QString& text);

    bool isIn(std::string_view text) const;

private:
    bool isAsciiIn(std::string_view text) const;

    QString m_text;
    /// In lower case, where the text is ASCII; else empty, and the slow way is taken.
    std::string m_ascii;
    /// By how many bytes the search may go on behind each byte.
    std::array<std::uint32_t, 256> m_skips{};
};

/// ASCII letters in lower case, other bytes as they are.
constexpr char foldCase(char byte)
{
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}
