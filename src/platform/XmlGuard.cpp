#include "XmlGuard.h"

#include <charconv>
#include <cstdint>

namespace platform {

namespace {

constexpr int maximumAttributes = 1000;
constexpr int maximumDeclarations = 100;
constexpr std::uint32_t lastCodePoint = 0x10FFFF;

/// Walks the same way through a document as the parser does: markup starts at any '<', and its kind decides
/// its end.
class Scanner {
public:
    explicit Scanner(std::string_view document)
        : m_rest(document)
    {
    }

    std::string scan()
    {
        while (m_hazard.empty() && !m_rest.empty()) {
            if (m_rest[0] != '<')
                checkText(take(m_rest.find('<')));
            else if (m_rest.starts_with("<?"))
                declaration();
            else if (m_rest.starts_with("<!--"))
                skip("<!--", "-->");
            else if (m_rest.starts_with("<![CDATA["))
                skip("<![CDATA[", "]]>");
            else if (m_rest.starts_with("<!"))
                skip("<!", ">");
            else
                element();
        }
        return m_hazard;
    }

private:
    std::string_view take(std::size_t count)
    {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    void skip(std::string_view start, std::string_view end)
    {
        take(start.size());
        const std::size_t found = m_rest.find(end);
        take(found == std::string_view::npos ? found : found + end.size());
    }

    void declaration()
    {
        skip("<?", "?>");
        if (++m_declarations > maximumDeclarations)
            m_hazard = "it has too many declarations";
    }

    void element()
    {
        for (int attributes = 0; !m_rest.empty() && m_hazard.empty();) {
            const char first = take(1)[0];
            if (first == '>')
                return;
            if (first != '"' && first != '\'')
                continue;
            checkText(take(m_rest.find(first)));
            take(1);
            if (++attributes > maximumAttributes)
                m_hazard = "an element of it has too many attributes";
        }
    }

    /// Looks at the character references of a text or of an attribute's value.
    void checkText(std::string_view text)
    {
        for (std::size_t at = text.find("&#"); at != std::string_view::npos; at = text.find("&#", at + 2)) {
            const bool hexadecimal = text.substr(at + 2, 1) == "x";
            const std::size_t start = at + (hexadecimal ? 3 : 2);
            std::uint32_t codePoint = 0;
            const char* const last = text.data() + text.size();
            const auto [end, error] =
                std::from_chars(text.data() + start, last, codePoint, hexadecimal ? 16 : 10);
            const bool isNumber = error == std::errc() && end != last && *end == ';';
            if (!isNumber || codePoint == 0 || codePoint > lastCodePoint)
                m_hazard = "it refers to a character that does not exist";
        }
    }

    std::string_view m_rest;
    std::string m_hazard;
    int m_declarations = 0;
};

} // namespace

std::string xmlHazard(std::string_view document)
{
    if (document.find('\0') != std::string_view::npos)
        return "it holds a NUL character";
    return Scanner(document).scan();
}

} // namespace platform
