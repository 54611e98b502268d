#include "LimitedFunctions.h"

#include "Availability.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace {

/// A star at its end stands for anything.
bool matches(const std::string& pattern, const std::string& name)
{
    if (!pattern.ends_with('*'))
        return name == pattern;
    return name.starts_with(std::string_view(pattern).substr(0, pattern.size() - 1));
}

/// The place of a parameter; -1 for a function without it.
int placeOf(const std::string& parameter, const std::vector<std::string>& parameters)
{
    const auto found = std::ranges::find(parameters, parameter);
    return found == parameters.end() ? -1 : static_cast<int>(found - parameters.begin());
}

} // namespace

LimitedFunctions::LimitedFunctions(
    const char* path, const Functions& functions, const Availability& availability)
{
    std::ifstream in(path);
    if (!in)
        throw std::runtime_error(std::string("cannot read ") + path);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.front() != '#')
            readLine(line, functions, availability);
    }
}

void LimitedFunctions::readLine(
    const std::string& line, const Functions& functions, const Availability& availability)
{
    static const std::set<std::string> checks{"below", "atMost", "unit", "attachment", "image", "compressed",
        "samples", "groups", "binding", "parameter", "parameterFloat", "parameterInts", "parameterFloats",
        "needs"};
    std::istringstream in(line);
    std::string pattern, parameter, check, limit, base;
    in >> pattern >> parameter >> check >> limit;
    std::string extensions;
    if (check == "needs")
        std::getline(in >> std::ws, extensions);
    else
        in >> base;
    if (!checks.contains(check))
        throw std::runtime_error("a limit without a check: " + line);
    const auto value = [&](const std::string& name) {
        return name.empty() ? 0U : availability.valueOf(name);
    };
    bool found = false;
    for (const auto& [name, parameters] : functions) {
        const int place = placeOf(parameter, parameters);
        if (!matches(pattern, name) || place < 0 || !availability.hasFunction(name))
            continue;
        found = true;
        std::ostringstream row;
        row << '{' << value(limit) << "U, " << value(base) << "U, LimitRow::Check::" << check << ", {"
            << place;
        for (const char* other :
            {"target", "level", "internalformat", "width", "height", "depth", "offset", "pname"})
            row << ", " << placeOf(other, parameters);
        row << "}, \"" << extensions << "\"},";
        m_rows[name].push_back(row.str());
    }
    if (!found)
        throw std::runtime_error("no function to limit: " + line);
}

std::size_t LimitedFunctions::first(const std::string& function) const
{
    std::size_t count = 0;
    for (auto row = m_rows.begin(); row != m_rows.end() && row->first < function; ++row)
        count += row->second.size();
    return count;
}

std::size_t LimitedFunctions::count(const std::string& function) const
{
    const auto found = m_rows.find(function);
    return found == m_rows.end() ? 0 : found->second.size();
}

void LimitedFunctions::write(const std::string& folder) const
{
    std::ofstream out(folder + "/LayerLimits.inc");
    for (const auto& [function, rows] : m_rows) {
        out << "// " << function << '\n';
        for (const std::string& row : rows)
            out << row << '\n';
    }
}
