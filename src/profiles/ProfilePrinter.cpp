#include "ProfilePrinter.h"

#include <string_view>

ProfilePrinter::ProfilePrinter(Layout layout)
    : XMLPrinter(nullptr, layout == Layout::Compact)
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
    Write(("&#" + std::to_string(static_cast<int>(value[0])) + ';').c_str());
    PushText(text.Value() + 1);
    return true;
}

bool ProfilePrinter::CompactMode(const tinyxml2::XMLElement& element)
{
    for (const tinyxml2::XMLNode* node = &element; node && node->ToElement(); node = node->Parent()) {
        if (node->FirstChild() && node->FirstChild()->ToText())
            return true;
    }
    return XMLPrinter::CompactMode(element);
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
