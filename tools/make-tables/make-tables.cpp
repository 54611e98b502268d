// Turns the data files of the sources into C++ tables, at build time. See usage() for what it reads and
// writes.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Enumerant {
    std::string name;
    std::uint32_t value = 0;
    std::string api; ///< "es1.1" to "es3.2", or "ext" where no core version requires it.
};

[[noreturn]] void fail(const std::string& message)
{
    throw std::runtime_error(message);
}

std::vector<std::string> readLines(const std::string& path)
{
    std::ifstream in(path);
    if (!in)
        fail("cannot read " + path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.front() != '#')
            lines.push_back(line);
    }
    return lines;
}

Enumerant parseEnumerant(const std::string& line)
{
    const std::size_t first = line.find('\t');
    const std::size_t second = first == std::string::npos ? first : line.find('\t', first + 1);
    if (second == std::string::npos)
        fail("not three columns: " + line);
    Enumerant enumerant{line.substr(0, first), 0, line.substr(second + 1)};
    const std::string_view number = std::string_view(line).substr(first + 1, second - first - 1);
    if (!number.starts_with("0x"))
        fail("not a hexadecimal value: " + line);
    const char* end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data() + 2, end, enumerant.value, 16);
    if (error != std::errc() || stop != end)
        fail("not a 32-bit value: " + line);
    return enumerant;
}

/// Lower is preferred where several names share a value: the earliest core version, then KHR, OES, EXT,
/// others. Names of equal rank keep the order of the registry.
int rank(const Enumerant& enumerant)
{
    constexpr std::array versions{"es1.1", "es2.0", "es3.0", "es3.1", "es3.2"};
    constexpr std::array suffixes{"_KHR", "_OES", "_EXT"};
    int rank = 0;
    for (const std::string_view version : versions) {
        if (enumerant.api == version)
            return rank;
        ++rank;
    }
    for (const std::string_view suffix : suffixes) {
        if (enumerant.name.ends_with(suffix))
            return rank;
        ++rank;
    }
    return rank;
}

/// The names that are fixed whatever their rank: bare small numbers are bits of buffer mapping far more often
/// than anything else.
bool isFixedChoice(std::string_view name)
{
    constexpr std::array<std::string_view, 8> fixed{"GL_INVALID_INDEX", "GL_NONE", "GL_MAP_READ_BIT",
        "GL_MAP_WRITE_BIT", "GL_MAP_INVALIDATE_RANGE_BIT", "GL_MAP_INVALIDATE_BUFFER_BIT",
        "GL_MAP_FLUSH_EXPLICIT_BIT", "GL_MAP_UNSYNCHRONIZED_BIT"};
    return std::find(fixed.begin(), fixed.end(), name) != fixed.end();
}

void writeEnumerants(const std::string& input, std::ostream& out)
{
    std::vector<Enumerant> enumerants;
    for (const std::string& line : readLines(input))
        enumerants.push_back(parseEnumerant(line));

    std::map<std::uint32_t, const Enumerant*> byValue;
    std::map<std::string, std::uint32_t> byName;
    for (const Enumerant& enumerant : enumerants) {
        byName.emplace(enumerant.name, enumerant.value);
        const Enumerant*& chosen = byValue[enumerant.value];
        const bool better = !chosen || isFixedChoice(enumerant.name)
            || (!isFixedChoice(chosen->name) && rank(enumerant) < rank(*chosen));
        if (better)
            chosen = &enumerant;
    }

    out << "constexpr std::array<ValueEntry, " << byValue.size() << "> entriesByValue{{\n";
    for (const auto& [value, enumerant] : byValue)
        out << "    {" << value << "U, \"" << enumerant->name << "\"},\n";
    out << "}};\n\nconstexpr std::array<NameEntry, " << byName.size() << "> entriesByName{{\n";
    for (const auto& [name, value] : byName)
        out << "    {\"" << name << "\", " << value << "U},\n";
    out << "}};\n";
}

void writeNames(
    const std::string& input, const std::string& table, const std::string& prefix, std::ostream& out)
{
    const std::vector<std::string> names = readLines(input);
    out << "constexpr std::array<const char*, " << names.size() << "> " << table << "{{\n";
    for (const std::string& name : names)
        out << "    \"" << prefix << name << "\",\n";
    out << "}};\n";
}

/// Name and decimal value are the first two columns; what follows them is for human readers.
void writeNumbers(const std::string& input, const std::string& table, std::ostream& out)
{
    std::map<std::string, std::int32_t> byName;
    for (const std::string& line : readLines(input)) {
        const std::size_t tab = line.find('\t');
        std::int32_t value = 0;
        const char* end = line.data() + line.size();
        const auto [stop, error] =
            std::from_chars(line.data() + std::min(tab, line.size() - 1) + 1, end, value);
        if (tab == std::string::npos || error != std::errc() || (stop != end && *stop != '\t'))
            fail("not a name and a signed 32-bit value: " + line);
        if (!byName.emplace(line.substr(0, tab), value).second)
            fail("twice in the file: " + line);
    }
    out << "constexpr std::array<NumberEntry, " << byName.size() << "> " << table << "{{\n";
    for (const auto& [name, value] : byName)
        out << "    {\"" << name << "\", " << value << "},\n";
    out << "}};\n";
}

std::vector<std::string> columnsOf(const std::string& line)
{
    std::vector<std::string> columns;
    std::istringstream in(line);
    for (std::string column; std::getline(in, column, '\t');)
        columns.push_back(column);
    return columns;
}

/// "3.1" becomes 31.
int parseVersion(const std::string& text)
{
    constexpr std::array<std::string_view, 5> versions{"1.1", "2.0", "3.0", "3.1", "3.2"};
    if (std::find(versions.begin(), versions.end(), text) == versions.end())
        fail("not a version of OpenGL ES: " + text);
    return (text[0] - '0') * 10 + (text[2] - '0');
}

/// The numbers of "1,1" or "2.0", checked, as they are written.
std::vector<std::string> parseValues(const std::string& text)
{
    std::vector<std::string> values;
    std::istringstream in(text);
    for (std::string value; std::getline(in, value, ',');) {
        double number = 0;
        const char* end = value.data() + value.size();
        const auto [stop, error] = std::from_chars(value.data(), end, number);
        if (error != std::errc() || stop != end)
            fail("not a number: " + text);
        values.push_back(value);
    }
    return values;
}

/// Enumerant, version, rule, values and source are the columns. The rows are sorted by enumerant, then by
/// version.
void writeMinima(const std::string& input, const std::string& table, std::ostream& out)
{
    const std::map<std::string, const char*> rules{
        {"min", "AtLeast"}, {"max", "AtMost"}, {"equals", "Equals"}, {"contains", "Contains"}};
    std::map<std::pair<std::string, int>, std::string> rows;
    for (const std::string& line : readLines(input)) {
        const std::vector<std::string> columns = columnsOf(line);
        if (columns.size() != 5 || line.find_first_of("\"\\") != std::string::npos)
            fail("not five columns of plain text: " + line);
        const auto rule = rules.find(columns[2]);
        const std::vector<std::string> values = parseValues(columns[3]);
        if (rule == rules.end() || values.size() != (columns[2] == "contains" ? 2U : 1U))
            fail("not a rule with its values: " + line);
        const int version = parseVersion(columns[1]);
        std::ostringstream row;
        row << "{\"" << columns[0] << "\", EsVersion{" << version << "}, Minimum::Rule::" << rule->second
            << ", " << values.size() << ", {" << values.front() << ", " << values.back() << "}, \""
            << columns[4] << "\"}";
        if (!rows.emplace(std::pair(columns[0], version), row.str()).second)
            fail("twice in the file: " + line);
    }
    out << "constexpr std::array<MinimumEntry, " << rows.size() << "> " << table << "{{\n";
    for (const auto& [key, row] : rows)
        out << "    " << row << ",\n";
    out << "}};\n";
}

/// Each file becomes its name and its whole text.
void writeTexts(const std::string& table, const std::vector<std::string>& inputs, std::ostream& out)
{
    out << "constexpr std::array<TextEntry, " << inputs.size() << "> " << table << "{{\n";
    for (const std::string& input : inputs) {
        std::ifstream in(input, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        if (!in || text.view().find(")text\"") != std::string_view::npos)
            fail("cannot take in " + input);
        out << "    {\"" << input.substr(input.rfind('/') + 1) << "\", R\"text(" << text.view()
            << ")text\"sv},\n";
    }
    out << "}};\n";
}

void usage()
{
    std::cerr << "usage: make-tables enumerants INPUT.tsv OUTPUT.inc\n"
                 "       make-tables names INPUT.txt OUTPUT.inc TABLE [PREFIX]\n"
                 "       make-tables numbers INPUT.tsv OUTPUT.inc TABLE\n"
                 "       make-tables minima INPUT.tsv OUTPUT.inc TABLE\n"
                 "       make-tables texts TABLE OUTPUT.inc [INPUT...]\n"
                 "\n"
                 "enumerants: name, value and first core version in columns, to two sorted tables.\n"
                 "names:      one name a line, to a table in the same order.\n"
                 "numbers:    name and decimal value in columns, to a table sorted by name.\n"
                 "minima:     enumerant, version, rule, values and source in columns, to a sorted table.\n"
                 "texts:      whole files, to a table of file names and texts.\n";
}

int run(const std::vector<std::string>& arguments)
{
    const bool enumerants = arguments.size() == 3 && arguments[0] == "enumerants";
    const bool names = (arguments.size() == 4 || arguments.size() == 5) && arguments[0] == "names";
    const bool numbers = arguments.size() == 4 && arguments[0] == "numbers";
    const bool minima = arguments.size() == 4 && arguments[0] == "minima";
    const bool texts = arguments.size() >= 3 && arguments[0] == "texts";
    if (!enumerants && !names && !numbers && !minima && !texts) {
        usage();
        return 2;
    }
    std::ofstream out(arguments[2]);
    out << "// Made from " << arguments[1].substr(arguments[1].rfind('/') + 1) << " at build time.\n\n";
    if (texts)
        writeTexts(arguments[1], {arguments.begin() + 3, arguments.end()}, out);
    else if (numbers)
        writeNumbers(arguments[1], arguments[3], out);
    else if (minima)
        writeMinima(arguments[1], arguments[3], out);
    else if (enumerants)
        writeEnumerants(arguments[1], out);
    else
        writeNames(arguments[1], arguments[3], arguments.size() == 5 ? arguments[4] : std::string(), out);
    out.close();
    if (!out)
        fail("cannot write " + arguments[2]);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception& error) {
        std::cerr << "make-tables: " << error.what() << '\n';
        return 1;
    }
}
