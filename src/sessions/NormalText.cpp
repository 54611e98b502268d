#include "NormalText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace sessions {

namespace {

enum CharacterClass : unsigned char {
    Other = 0,
    Digit = 1,
    HexLetter = 2,
    Letter = 4, ///< Also underscores, and all bytes of characters beyond ASCII.
    PathEnd = 8, ///< What ends a path: blanks, quotes, brackets, separators.
};

constexpr std::array<unsigned char, 256> makeClasses()
{
    std::array<unsigned char, 256> classes{};
    for (unsigned int c = 0x80; c < 256; ++c)
        classes[c] = Letter;
    for (unsigned int c = 'a'; c <= 'z'; ++c)
        classes[c] = classes[c - 'a' + 'A'] = c <= 'f' ? Letter | HexLetter : Letter;
    for (unsigned int c = '0'; c <= '9'; ++c)
        classes[c] = Digit;
    classes['_'] = Letter;
    for (unsigned int c = 0; c <= ' '; ++c)
        classes[c] = PathEnd;
    for (const char c : std::string_view("\"'`()[]{}<>,;:|=*?"))
        classes[static_cast<unsigned char>(c)] = PathEnd;
    return classes;
}

constexpr std::array<unsigned char, 256> classes = makeClasses();

bool is(char c, unsigned int kinds)
{
    return (classes[static_cast<unsigned char>(c)] & kinds) != 0;
}

/// Goes through one text from its start to its end.
class Normaliser {
public:
    Normaliser(std::string_view text, std::string& to)
        : m_text(text)
        , m_to(to)
    {
    }

    void run()
    {
        while (m_at < m_text.size()) {
            const char c = m_text[m_at];
            if (is(c, Digit))
                takeNumber();
            else if (is(c, Letter))
                takeWord();
            else if (c == '/' && mayBeginPath())
                takePath();
            else
                ++m_at;
        }
        copyUpTo(m_text.size());
    }

private:
    /// The end of the characters of some classes from a place on.
    std::size_t endOf(std::size_t at, unsigned int kinds) const
    {
        while (at < m_text.size() && is(m_text[at], kinds))
            ++at;
        return at;
    }
    /// The end of the word that goes on here. A word of many numbers is looked through once.
    std::size_t endOfWord()
    {
        if (m_at >= m_wordEnd) {
            m_wordBegin = m_at;
            m_wordEnd = endOf(m_at, Digit | Letter);
        }
        return m_wordEnd;
    }
    bool isAt(std::size_t at, unsigned int kinds) const
    {
        return at < m_text.size() && is(m_text[at], kinds);
    }

    /// Copies what stands before a place and has not been copied or replaced.
    void copyUpTo(std::size_t place)
    {
        m_to.append(m_text, m_done, place - m_done);
        m_done = place;
    }

    void replace(std::size_t begin, std::size_t end, std::string_view by)
    {
        copyUpTo(begin);
        m_to += by;
        m_done = m_at = end;
    }

    void replaceNumber(std::size_t end)
    {
        // A sign belongs to the number unless it stands between two operands.
        const bool hasSign =
            m_at > 0 && m_text[m_at - 1] == '-' && (m_at == 1 || is(m_text[m_at - 2], PathEnd));
        replace(hasSign ? m_at - 1 : m_at, end, "#");
    }

    void takeNumber()
    {
        const std::size_t wordEnd = endOfWord();
        std::size_t end = endOf(m_at, Digit);
        const bool isHexadecimal = m_text[m_at] == '0' && end == m_at + 1 && end < wordEnd
            && (m_text[end] == 'x' || m_text[end] == 'X') && endOf(end + 1, Digit | HexLetter) == wordEnd;
        if (isHexadecimal || isPointer(wordEnd)) {
            replaceNumber(wordEnd);
            return;
        }
        // "2D", as in names of textures.
        if (end + 1 == wordEnd && m_text[end] == 'D') {
            m_at = wordEnd;
            return;
        }
        while (end + 1 < m_text.size() && m_text[end] == '.' && is(m_text[end + 1], Digit))
            end = endOf(end + 1, Digit);
        if (isAt(end, HexLetter) && (m_text[end] == 'e' || m_text[end] == 'E')) {
            const bool hasSign =
                end + 1 < m_text.size() && (m_text[end + 1] == '-' || m_text[end + 1] == '+');
            const std::size_t digits = end + (hasSign ? 2 : 1);
            if (isAt(digits, Digit))
                end = endOf(digits, Digit);
        }
        replaceNumber(end);
        // A unit, or what stands between the numbers of "640x480".
        m_at = endOf(m_at, Letter);
    }

    /// Whether the whole word is made of eight or more hexadecimal digits, some of them letters.
    bool isPointer(std::size_t wordEnd) const
    {
        constexpr std::size_t fewest = 8;
        if (m_at != m_wordBegin || wordEnd - m_at < fewest || endOf(m_at, Digit | HexLetter) != wordEnd)
            return false;
        const std::string_view word = m_text.substr(m_at, wordEnd - m_at);
        return std::any_of(word.begin(), word.end(), [](char c) { return is(c, Digit); });
    }

    void takeWord()
    {
        const std::size_t end = endOfWord();
        if (isPointer(end))
            replaceNumber(end);
        else
            m_at = end;
    }

    bool mayBeginPath() const { return m_at == 0 || is(m_text[m_at - 1], PathEnd); }

    void takePath()
    {
        std::size_t end = m_at;
        std::size_t lastSlash = m_at;
        std::size_t components = 0;
        for (; end < m_text.size() && !is(m_text[end], PathEnd); ++end) {
            if (m_text[end] != '/')
                continue;
            lastSlash = end;
            if (end + 1 < m_text.size() && m_text[end + 1] != '/' && !is(m_text[end + 1], PathEnd))
                ++components;
        }
        if (components > 1)
            replace(m_at, lastSlash + 1, ".../");
        else
            m_at = end;
    }

    std::string_view m_text;
    std::string& m_to;
    std::size_t m_at = 0;
    std::size_t m_wordBegin = 0;
    std::size_t m_wordEnd = 0;
    std::size_t m_done = 0; ///< Before it, everything is copied or replaced.
};

} // namespace

void appendNormalised(std::string_view text, std::string& to)
{
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    Normaliser(text, to).run();
}

std::string normalised(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    appendNormalised(text, result);
    return result;
}

} // namespace sessions
