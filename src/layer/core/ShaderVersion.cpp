#include "ShaderVersion.h"

#include <algorithm>
#include <charconv>

namespace layer {

namespace {

bool isBlank(char letter)
{
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\v' || letter == '\f';
}

/// The directives of a source, line by line. Comments and continued lines are seen through.
class Directives {
public:
    explicit Directives(std::string_view source)
    {
        m_text.reserve(source.size());
        for (std::size_t i = 0; i < source.size();) {
            const std::string_view rest = source.substr(i);
            if (rest.starts_with("//"))
                i += std::min(rest.find('\n'), rest.size());
            else if (rest.starts_with("/*")) {
                i += std::min(rest.find("*/", 2), rest.size() - 2) + 2;
                m_text += ' ';
            } else if (rest.starts_with("\\\n"))
                i += 2;
            else
                m_text += source[i++];
        }
        m_rest = m_text;
    }
    Directives(const Directives&) = delete;
    Directives& operator=(const Directives&) = delete;

    /// What stands behind the next "#"; false at the end.
    bool next(std::string_view& directive)
    {
        while (!m_rest.empty()) {
            const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
            std::string_view line = m_rest.substr(0, end);
            m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
            if (word(line) != "#")
                continue;
            directive = line;
            return true;
        }
        return false;
    }

    /// Takes a word, or a sign that stands for itself, from the start of a line.
    static std::string_view word(std::string_view& line)
    {
        while (!line.empty() && isBlank(line.front()))
            line.remove_prefix(1);
        std::size_t size = 0;
        while (size < line.size() && !isBlank(line[size]) && line[size] != '#' && line[size] != ':')
            ++size;
        size = std::max<std::size_t>(size, line.empty() ? 0 : 1);
        const std::string_view taken = line.substr(0, size);
        line.remove_prefix(size);
        return taken;
    }

private:
    std::string m_text;
    std::string_view m_rest;
};

/// 300 for the language of OpenGL ES 3.0.
int languageOf(int esVersion)
{
    return esVersion < 30 ? 100 : esVersion * 10;
}

std::string versionRefusal(const device::Table& table, const device::Api& api, std::string_view number)
{
    int version = 0;
    std::from_chars(number.data(), number.data() + number.size(), version);
    if (version <= languageOf(offeredVersion(api)))
        return {};
    return "#version " + std::string(number) + " is not available on " + table.name + ", whose "
        + apiName(api.version) + " has " + std::to_string(languageOf(offeredVersion(api))) + " at most";
}

} // namespace

std::string shaderRefusal(const device::Table& table, const device::Api& api, std::string_view source)
{
    Directives directives(source);
    std::string refusal;
    int conditions = 0;
    for (std::string_view line; refusal.empty() && directives.next(line);) {
        const std::string_view name = Directives::word(line);
        if (name == "if" || name == "ifdef" || name == "ifndef")
            ++conditions;
        if (name == "endif")
            --conditions;
        const std::string_view subject = Directives::word(line);
        if (name == "version")
            refusal = versionRefusal(table, api, subject);
        // What stands under a condition is often only there where the extension is.
        if (name != "extension" || conditions > 0 || Directives::word(line) != ":"
            || Directives::word(line) != "require")
            continue;
        if (subject != "all" && std::ranges::find(api.extensions, subject) == api.extensions.end())
            refusal = "the extension " + std::string(subject) + " is not available on " + table.name;
    }
    return refusal;
}

std::string failingShader(std::string_view reason)
{
    return "#version 100\n#error " + std::string(reason) + '\n';
}

} // namespace layer
