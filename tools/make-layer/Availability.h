#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

/// Which versions and extensions of OpenGL ES have which functions and enumerants, as the registry says.
class Availability {
public:
    explicit Availability(const char* registryPath);

    bool hasFunction(const std::string& name) const { return m_functions.contains(name); }
    /// The value of an enumerant, by any name that the registry has for it. Throws std::runtime_error.
    std::uint32_t valueOf(const std::string& enumerant) const;
    /// Writes LayerAvailability.inc, with a row for each of the functions.
    void write(const std::string& folder, const std::vector<std::string>& functions) const;

private:
    struct Reader;

    /// See EsSource in Availability.h of the layer.
    using Sources = std::set<unsigned>;

    std::vector<std::string> m_extensions;
    std::map<std::string, std::uint32_t> m_values;
    std::set<std::string> m_bits; ///< Enumerants that are bits of masks.
    std::map<std::string, Sources> m_functions;
    std::map<std::uint32_t, Sources> m_enumerants;
};
