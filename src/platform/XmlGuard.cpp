#include "XmlGuard.h"

#include "Limits.h"

#include <charconv>
#include <cstdint>

namespace platform {

namespace {

constexpr std::string_view blanks = " \t\n\v\f\r";
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
                characters(take(m_rest.find('<')));
            else if (m_rest.starts_with("<?"))
                declaration();
            else if (m_rest.starts_with("<!--"))
                skip("<!--", "-->");
            else if (m_rest.starts_with("<![CDATA["))
                characters(skip("<![CDATA[", "]]>"), true);
            else if (m_rest.starts_with("<!"))
                documentType();
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

    std::string_view skip(std::string_view start, std::string_view end)
    {
        take(start.size());
        const std::string_view inside = take(m_rest.find(end));
        take(end.size());
        return inside;
    }

    void declaration()
    {
        skip("<?", "?>");
        if (++m_declarations > limits::xmlDeclarations)
            m_hazard = "it has too many declarations";
    }

    /// The parser takes it to end at the first '>', which may be that of a declaration inside.
    void documentType()
    {
        const std::string_view inside = skip("<!", ">");
        const std::size_t bracket = inside.find('[');
        if (m_depth == 0 && bracket != std::string_view::npos
            && inside.find("<!", bracket) != std::string_view::npos)
            m_hazard = "it has a document type with declarations inside";
    }

    /// Outside of the elements the parser takes text as well, but it would change with every save.
    void characters(std::string_view text, bool isLiteral = false)
    {
        if (m_depth == 0 && (isLiteral || text.find_first_not_of(blanks) != std::string_view::npos))
            m_hazard = "it has text outside of its elements";
        else if (!isLiteral)
            checkReferences(text);
    }

    void element()
    {
        take(1);
        take(m_rest.find_first_not_of(blanks));
        const bool isEnd = m_rest.starts_with('/');
        char last = 0;
        for (int attributes = 0; !m_rest.empty() && m_hazard.empty();) {
            const char previous = last;
            last = take(1)[0];
            if (last == '>') {
                enterOrLeave(isEnd, previous == '/');
                return;
            }
            if (last != '"' && last != '\'')
                continue;
            checkReferences(take(m_rest.find(last)));
            take(1);
            if (++attributes > limits::xmlAttributes)
                m_hazard = "an element of it has too many attributes";
        }
    }

    /// What follows an end tag too many is not read at all.
    void enterOrLeave(bool isEnd, bool isEmpty)
    {
        if (isEnd && m_depth == 0)
            m_hazard = "it has an end tag without an element";
        else if (isEnd)
            --m_depth;
        else if (!isEmpty)
            ++m_depth;
    }

    /// Looks at the character references of a text or of an attribute's value.
    void checkReferences(std::string_view text)
    {
        for (std::size_t at = text.find("&#"); at != std::string_view::npos; at = text.find("&#", at + 2)) {
            const bool hexadecimal = text.substr(at + 2, 1) == "x";
            const std::size_t start = at + (hexadecimal ? 3 : 2);
            std::uint32_t codePoint = 0;
            const char* last = text.data() + text.size();
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
    int m_depth = 0;
};

} // namespace

std::string xmlHazard(std::string_view document)
{
    if (document.find('\0') != std::string_view::npos)
        return "it holds a NUL character";
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (document.starts_with(byteOrderMark))
        document.remove_prefix(byteOrderMark.size());
    return Scanner(document).scan();
}

} // namespace platform
