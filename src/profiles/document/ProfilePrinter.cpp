#include "ProfilePrinter.h"

#include <string_view>

using tinyxml2::XMLAttribute;
using tinyxml2::XMLElement;

ProfilePrinter::ProfilePrinter(Layout layout, std::size_t limit)
    : XMLPrinter(nullptr, layout == Layout::Compact)
    , m_limit(limit)
{
}

bool ProfilePrinter::Visit(const tinyxml2::XMLText& text)
{
    constexpr std::string_view blanks = " \t\n\v\f\r";
    const std::string_view value = text.Value();
    if (text.CData() || value.empty() || value.find_first_not_of(blanks) != std::string_view::npos)
        return XMLPrinter::Visit(text);
    // A text of blanks alone counts as none, unless it has a reference in it.
    PushText("");
    const std::string reference = "&#" + std::to_string(static_cast<int>(value[0])) + ';';
    Write(reference.data(), reference.size());
    PushText(text.Value() + 1);
    return true;
}

bool ProfilePrinter::VisitEnter(const XMLElement& element, const XMLAttribute* attribute)
{
    XMLPrinter::VisitEnter(element, attribute);
    const bool beginsWithText = element.FirstChild() && element.FirstChild()->ToText();
    m_onOneLine.push_back(beginsWithText || (!m_onOneLine.empty() && m_onOneLine.back()));
    return !isFull();
}

bool ProfilePrinter::VisitExit(const XMLElement& element)
{
    XMLPrinter::VisitExit(element);
    m_onOneLine.pop_back();
    return !isFull();
}

/// Asked about the innermost element that is open.
bool ProfilePrinter::CompactMode(const XMLElement& element)
{
    return (!m_onOneLine.empty() && m_onOneLine.back()) || XMLPrinter::CompactMode(element);
}

void ProfilePrinter::Write(const char* data, std::size_t size)
{
    if (!isFull())
        XMLPrinter::Write(data, size);
}

bool ProfilePrinter::isFull() const
{
    return static_cast<std::size_t>(CStrSize()) > m_limit + 1;
}

std::string ProfilePrinter::text() const
{
    const std::string_view printed(CStr(), static_cast<std::size_t>(CStrSize() - 1));
    std::string result;
    result.reserve(printed.size());
    // Those that a document holds as they are become line feeds on reading, so these came from references.
    for (const char c : printed) {
        if (c == '\r')
            result += "&#13;";
        else
            result += c;
    }
    return result;
}
