#include "DeviceTable.h"

#include <charconv>
#include <concepts>
#include <ranges>
#include <utility>

namespace layer::device {

namespace {

/// Lines stay lines, whatever a text holds.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char letter : text) {
        if (letter == '\n')
            result += "\\n";
        else if (letter == '\r')
            result += "\\r";
        else if (letter == '\\')
            result += "\\\\";
        else
            result += letter;
    }
    return result;
}

std::string textOf(const Number& number)
{
    std::array<char, 40> text{};
    char* const start = text.data();
    char* const limit = text.data() + text.size();
    // The exponent tells a real number from an integer.
    const auto written = std::holds_alternative<double>(number)
        ? std::to_chars(start, limit, std::get<double>(number), std::chars_format::scientific)
        : std::to_chars(start, limit, std::get<std::int64_t>(number));
    return {start, written.ptr};
}

class Lines {
public:
    template <typename... Words> void add(std::string_view keyword, const Words&... words)
    {
        m_text += keyword;
        ((m_text += ' ', append(words)), ...);
        m_text += '\n';
    }
    std::string take() { return std::move(m_text); }

private:
    void append(const std::string& text) { m_text += escaped(text); }
    void append(std::integral auto number) { m_text += std::to_string(number); }
    template <std::ranges::range Numbers> void append(const Numbers& numbers)
    {
        bool isFirst = true;
        for (const auto& number : numbers) {
            m_text += isFirst ? "" : " ";
            m_text += textOf(number);
            isFirst = false;
        }
    }

    std::string m_text;
};

void write(Lines& lines, const Api& api)
{
    lines.add("api", api.version);
    for (const auto& [name, text] : api.texts)
        lines.add("text", name, text);
    for (const std::string& extension : api.extensions)
        lines.add("extension", extension);
    for (const auto& [name, values] : api.capabilities)
        lines.add("capability", name, values);
    for (const auto& [types, values] : api.precisions)
        lines.add("precision", types.first, types.second, values);
    for (const auto& [format, counts] : api.sampleCounts)
        lines.add("samples", format, counts);
}

} // namespace

std::string toText(const Table& table)
{
    Lines lines;
    lines.add("corvale-device 1");
    lines.add("name", table.name);
    lines.add("vendor", table.vendor);
    lines.add("renderer", table.renderer);
    lines.add("strict", table.strict ? 1 : 0);
    for (const auto& [name, text] : table.eglTexts)
        lines.add("egl", name, text);
    for (const Api& api : table.apis)
        write(lines, api);
    for (const Config& config : table.configs) {
        lines.add("config");
        for (const auto& [attribute, value] : config)
            lines.add("attribute", attribute, value);
    }
    lines.add("end");
    return lines.take();
}

} // namespace layer::device
