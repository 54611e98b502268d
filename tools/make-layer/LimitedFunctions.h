#pragma once

#include <map>
#include <string>
#include <vector>

class Availability;

/// Which parameters of which functions a device limits, from a file of lines as its head describes.
class LimitedFunctions {
public:
    /// The functions with the names of their parameters.
    using Functions = std::map<std::string, std::vector<std::string>>;

    LimitedFunctions(const char* path, const Functions& functions, const Availability& availability);

    /// The place of a function's first row among all, and their number.
    std::size_t first(const std::string& function) const;
    std::size_t count(const std::string& function) const;
    /// Writes LayerLimits.inc.
    void write(const std::string& folder) const;

private:
    void readLine(const std::string& line, const Functions& functions, const Availability& availability);

    std::map<std::string, std::vector<std::string>> m_rows; ///< By function, as they are written.
};
