#include "DeviceTable.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace layer::device {

namespace {

constexpr std::int32_t configId = 0x3028; ///< EGL_CONFIG_ID

[[noreturn]] void fail(const std::string& reason)
{
    throw std::runtime_error(reason);
}

std::string unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        const char code = i + 1 < text.size() ? text[++i] : '\0';
        if (code != 'n' && code != 'r' && code != '\\')
            fail("a backslash that stands for nothing");
        result += code == 'n' ? '\n' : code == 'r' ? '\r' : '\\';
    }
    return result;
}

/// The words of a line, taken from its start.
class Words {
public:
    explicit Words(std::string_view line)
        : m_rest(line)
    {
    }

    bool isEmpty() const { return m_rest.empty(); }
    std::string_view next()
    {
        if (m_rest.empty())
            fail("something is missing at the end of the line");
        const std::size_t blank = std::min(m_rest.find(' '), m_rest.size());
        const std::string_view word = m_rest.substr(0, blank);
        m_rest.remove_prefix(std::min(blank + 1, m_rest.size()));
        return word;
    }
    template <typename Integer> Integer integer()
    {
        const std::string_view word = next();
        Integer value{};
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error != std::errc() || end != word.data() + word.size())
            fail("no number of its kind: " + std::string(word));
        return value;
    }
    Number number()
    {
        if (m_rest.substr(0, m_rest.find(' ')).find('e') == std::string_view::npos)
            return integer<std::int64_t>();
        const std::string_view word = next();
        double value = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(value))
            fail("no number: " + std::string(word));
        return value;
    }
    std::string rest() { return unescaped(std::exchange(m_rest, {})); }

private:
    std::string_view m_rest;
};

template <typename Map, typename Key, typename Value> void addOnce(Map& map, Key key, Value value)
{
    if (!map.emplace(std::move(key), std::move(value)).second)
        fail("said twice");
}

class Reader {
public:
    /// Takes a line behind the first one. False once the table is whole.
    bool read(std::string_view line)
    {
        Words words(line);
        const std::string_view keyword = words.next();
        if (keyword == "end")
            return false;
        if (keyword == "api")
            addApi(words.integer<int>());
        else if (keyword == "config")
            m_table.configs.emplace_back();
        else if (keyword == "attribute")
            addAttribute(words);
        else if (!readOfTable(keyword, words) && !readOfApi(keyword, words))
            fail("an unknown word: " + std::string(keyword));
        if (!words.isEmpty())
            fail("more than a line holds");
        return true;
    }

    Table take()
    {
        for (const Config& config : m_table.configs) {
            if (!config.contains(configId))
                fail("a config without an id");
        }
        return std::move(m_table);
    }

private:
    bool readOfTable(std::string_view keyword, Words& words)
    {
        if (keyword == "name")
            m_table.name = words.rest();
        else if (keyword == "vendor")
            m_table.vendor = words.rest();
        else if (keyword == "renderer")
            m_table.renderer = words.rest();
        else if (keyword == "strict")
            m_table.strict = words.integer<int>() != 0;
        else if (keyword == "egl") {
            const auto name = words.integer<std::int32_t>();
            addOnce(m_table.eglTexts, name, words.rest());
        } else
            return false;
        return true;
    }

    bool readOfApi(std::string_view keyword, Words& words)
    {
        if (keyword == "text") {
            const auto name = words.integer<std::uint32_t>();
            addOnce(api().texts, name, words.rest());
        } else if (keyword == "extension") {
            api().extensions.push_back(words.rest());
        } else if (keyword == "capability") {
            const auto name = words.integer<std::uint32_t>();
            std::vector<Number> values;
            while (!words.isEmpty())
                values.push_back(words.number());
            addOnce(api().capabilities, name, std::move(values));
        } else if (keyword == "precision") {
            const auto shader = words.integer<std::uint32_t>();
            const auto precision = words.integer<std::uint32_t>();
            std::array<std::int32_t, 3> values{};
            for (std::int32_t& value : values)
                value = words.integer<std::int32_t>();
            addOnce(api().precisions, std::pair(shader, precision), values);
        } else if (keyword == "samples") {
            const auto format = words.integer<std::uint32_t>();
            std::vector<std::int32_t> counts;
            while (!words.isEmpty())
                counts.push_back(words.integer<std::int32_t>());
            addOnce(api().sampleCounts, format, std::move(counts));
        } else {
            return false;
        }
        return true;
    }

    void addApi(int version)
    {
        constexpr std::array versions{10, 11, 20, 30, 31, 32};
        if (std::ranges::find(versions, version) == versions.end())
            fail("no version of OpenGL ES");
        if (!m_table.apis.empty() && m_table.apis.back().version >= version)
            fail("versions that do not rise");
        m_table.apis.emplace_back().version = version;
    }

    Api& api()
    {
        if (m_table.apis.empty())
            fail("no version of OpenGL ES before it");
        return m_table.apis.back();
    }

    void addAttribute(Words& words)
    {
        if (m_table.configs.empty())
            fail("no config before it");
        const auto attribute = words.integer<std::int32_t>();
        const auto value = words.integer<std::int32_t>();
        if (attribute == configId && std::ranges::any_of(m_table.configs, [&](const Config& config) {
                const auto id = config.find(configId);
                return id != config.end() && id->second == value;
            }))
            fail("an id that another config has");
        addOnce(m_table.configs.back(), attribute, value);
    }

    Table m_table;
};

Table read(std::string_view text, std::size_t& lineNumber)
{
    Reader reader;
    bool isOpen = true;
    while (isOpen) {
        ++lineNumber;
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos)
            fail("the table is cut off");
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (lineNumber > 1)
            isOpen = reader.read(line);
        else if (line != "corvale-device 1")
            fail("no table of a device");
    }
    if (!text.empty())
        fail("lines behind the end");
    return reader.take();
}

} // namespace

std::optional<Table> fromText(std::string_view text, std::string* why)
{
    std::size_t lineNumber = 0;
    try {
        return read(text, lineNumber);
    } catch (const std::runtime_error& error) {
        *why = "line " + std::to_string(lineNumber) + ": " + error.what();
        return std::nullopt;
    }
}

} // namespace layer::device
