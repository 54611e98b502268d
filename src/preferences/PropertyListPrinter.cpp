#include "PropertyListPrinter.h"

#include <cstdio>
#include <string_view>

PropertyListPrinter::PropertyListPrinter()
    : XMLPrinter(nullptr, false)
{
}

bool PropertyListPrinter::Visit(const tinyxml2::XMLText& text)
{
    // What the parser takes for blanks.
    constexpr std::string_view blanks = " \t\n\v\f\r";
    const std::string_view value = text.Value();
    if (text.CData() || value.empty() || value.find_first_not_of(blanks) != std::string_view::npos)
        return XMLPrinter::Visit(text);
    char reference[8];
    const int size = std::snprintf(reference, sizeof reference, "&#%d;", value[0]);
    // Tells the printer that the element holds text and must not be indented inside.
    PushText("");
    XMLPrinter::Write(reference, static_cast<std::size_t>(size));
    Write(value.data() + 1, value.size() - 1);
    return true;
}

void PropertyListPrinter::Write(const char* data, std::size_t size)
{
    // A carriage return in the tree stems from a reference or from a setter; the parser leaves no other one
    // in.
    std::string_view rest(data, size);
    for (std::size_t at = rest.find('\r'); at != std::string_view::npos; at = rest.find('\r')) {
        XMLPrinter::Write(rest.data(), at);
        XMLPrinter::Write("&#13;", 5);
        rest.remove_prefix(at + 1);
    }
    XMLPrinter::Write(rest.data(), rest.size());
}

void PropertyListPrinter::Putc(char character)
{
    Write(&character, 1);
}
