#include "XmlText.h"

#include "XmlGuard.h"

#include <vector>

#include <tinyxml2.h>

using tinyxml2::XMLAttribute;
using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

namespace platform {

namespace {

class Printer : public tinyxml2::XMLPrinter {
public:
    Printer(XmlLayout layout, std::size_t limit)
        : XMLPrinter(nullptr, layout == XmlLayout::Compact)
        , m_layout(layout)
        , m_limit(limit)
    {
    }

    bool VisitEnter(const XMLElement& element, const XMLAttribute* attribute) override
    {
        XMLPrinter::VisitEnter(element, attribute);
        const bool beginsWithText = element.FirstChild() && element.FirstChild()->ToText();
        m_onOneLine.push_back(beginsWithText || (!m_onOneLine.empty() && m_onOneLine.back()));
        return !isFull();
    }

    bool VisitExit(const XMLElement& element) override
    {
        XMLPrinter::VisitExit(element);
        m_onOneLine.pop_back();
        return !isFull();
    }

    bool Visit(const tinyxml2::XMLText& text) override
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

    std::string text() const
    {
        const std::string_view printed(CStr(), static_cast<std::size_t>(CStrSize() - 1));
        std::string result;
        result.reserve(printed.size());
        // Those that a document holds as they are become line feeds on reading, so these came from
        // references.
        for (const char c : printed) {
            if (c == '\r')
                result += "&#13;";
            else
                result += c;
        }
        return result;
    }

protected:
    /// Asked about the innermost element that is open.
    bool CompactMode(const XMLElement& element) override
    {
        const bool isOnOneLine =
            m_layout == XmlLayout::IndentedAroundText && !m_onOneLine.empty() && m_onOneLine.back();
        return isOnOneLine || XMLPrinter::CompactMode(element);
    }

    void Write(const char* data, std::size_t size) override
    {
        if (!isFull())
            XMLPrinter::Write(data, size);
    }

private:
    bool isFull() const { return static_cast<std::size_t>(CStrSize()) > m_limit + 1; }

    XmlLayout m_layout;
    std::size_t m_limit;
    /// For each open element, whether it or one around it begins with text.
    std::vector<bool> m_onOneLine;
};

} // namespace

std::string parseXml(XMLDocument& document, std::string_view text)
{
    std::string reason = xmlHazard(text);
    if (reason.empty() && document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS)
        reason = document.ErrorStr();
    if (!reason.empty())
        document.Clear();
    return reason;
}

std::string textOf(const XMLElement& element)
{
    std::string text;
    for (const XMLNode* child = element.FirstChild(); child; child = child->NextSibling()) {
        if (child->ToText())
            text += child->Value();
    }
    return text;
}

std::string printXml(const XMLNode& node, XmlLayout layout, std::size_t limit)
{
    Printer printer(layout, limit);
    node.Accept(&printer);
    return printer.text();
}

} // namespace platform
