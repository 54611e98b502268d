#include "Availability.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string_view>

#include <tinyxml2.h>

namespace {

using tinyxml2::XMLElement;

constexpr unsigned fixedFunction = 1; ///< OpenGL ES 1.1
constexpr unsigned shaders = 2; ///< OpenGL ES 2.0 and later

void visit(const XMLElement* parent, const char* name, const std::function<void(const XMLElement&)>& call)
{
    for (const XMLElement* child = parent ? parent->FirstChildElement(name) : nullptr; child;
         child = child->NextSiblingElement(name))
        call(*child);
}

std::string attribute(const XMLElement& element, const char* name)
{
    const char* value = element.Attribute(name);
    return value ? value : "";
}

/// "gl|gles1" as bits.
unsigned familiesOf(const std::string& apis)
{
    unsigned families = 0;
    for (std::size_t start = 0; start <= apis.size();) {
        const std::size_t end = std::min(apis.find('|', start), apis.size());
        const std::string_view api = std::string_view(apis).substr(start, end - start);
        families |= api == "gles1" ? fixedFunction : api == "gles2" ? shaders : 0U;
        start = end + 1;
    }
    return families;
}

/// The number of a version's feature among the sources; 0 for one that is not of OpenGL ES.
unsigned featureOf(const std::string& name)
{
    static const std::map<std::string, unsigned> features{{"GL_VERSION_ES_CM_1_0", 11},
        {"GL_ES_VERSION_2_0", 20}, {"GL_ES_VERSION_3_0", 30}, {"GL_ES_VERSION_3_1", 31},
        {"GL_ES_VERSION_3_2", 32}};
    const auto found = features.find(name);
    return found == features.end() ? 0 : found->second;
}

constexpr unsigned firstExtension = 64; ///< Lower numbers are versions.

} // namespace

struct Availability::Reader {
    Availability& all;

    void readValues(const XMLElement& enums) const
    {
        const bool areBits = attribute(enums, "type") == "bitmask";
        visit(&enums, "enum", [&](const XMLElement& element) {
            const std::string api = attribute(element, "api");
            const std::string name = attribute(element, "name");
            // Values of 64 bits are none that a function takes.
            const unsigned long long value = std::strtoull(attribute(element, "value").c_str(), nullptr, 0);
            if ((!api.empty() && familiesOf(api) == 0) || value > 0xFFFFFFFFULL)
                return;
            all.m_values[name] = static_cast<std::uint32_t>(value);
            if (areBits)
                all.m_bits.insert(name);
        });
    }

    void readRequired(const XMLElement& owner, unsigned number, unsigned families) const
    {
        visit(&owner, "require", [&](const XMLElement& require) {
            const std::string api = attribute(require, "api");
            const unsigned here = api.empty() ? families : families & familiesOf(api);
            if (here == 0)
                return;
            const unsigned source = number * 4 + here;
            visit(&require, "command", [&](const XMLElement& command) {
                all.m_functions[attribute(command, "name")].insert(source);
            });
            visit(&require, "enum", [&](const XMLElement& element) {
                const std::string name = attribute(element, "name");
                const auto value = all.m_values.find(name);
                if (value != all.m_values.end() && !all.m_bits.contains(name))
                    all.m_enumerants[value->second].insert(source);
            });
        });
    }

    void readExtension(const XMLElement& extension) const
    {
        const unsigned families = familiesOf(attribute(extension, "supported"));
        if (families == 0)
            return;
        const unsigned number = firstExtension + static_cast<unsigned>(all.m_extensions.size());
        all.m_extensions.push_back(attribute(extension, "name"));
        readRequired(extension, number, families);
    }
};

Availability::Availability(const char* registryPath)
{
    tinyxml2::XMLDocument document;
    if (document.LoadFile(registryPath) != tinyxml2::XML_SUCCESS)
        throw std::runtime_error(document.ErrorStr());
    const XMLElement* registry = document.FirstChildElement("registry");
    const Reader reader{*this};
    visit(registry, "enums", [&](const XMLElement& enums) { reader.readValues(enums); });
    visit(registry, "feature", [&](const XMLElement& feature) {
        const unsigned number = featureOf(attribute(feature, "name"));
        if (number != 0)
            reader.readRequired(feature, number, number < 20 ? fixedFunction : shaders);
    });
    visit(registry ? registry->FirstChildElement("extensions") : nullptr, "extension",
        [&](const XMLElement& extension) { reader.readExtension(extension); });
    if (m_functions.empty() || m_extensions.empty())
        throw std::runtime_error(std::string(registryPath) + " has nothing of OpenGL ES");
}

std::uint32_t Availability::valueOf(const std::string& enumerant) const
{
    const auto found = m_values.find(enumerant);
    if (found == m_values.end())
        throw std::runtime_error("there is no enumerant " + enumerant);
    return found->second;
}

void Availability::write(const std::string& folder, const std::vector<std::string>& functions) const
{
    std::ofstream out(folder + "/LayerAvailability.inc");
    std::string sources;
    unsigned count = 0;
    const auto add = [&](const Sources& added) {
        for (const unsigned source : added)
            sources += std::to_string(source) + ",\n";
        count += static_cast<unsigned>(added.size());
    };
    out << "constexpr const char* extensionNames[] = {\n";
    for (const std::string& name : m_extensions)
        out << '"' << name << "\",\n";
    out << "};\nconstexpr std::uint32_t functionStarts[] = {\n";
    for (const std::string& function : functions) {
        out << count << ",\n";
        const auto found = m_functions.find(function);
        add(found == m_functions.end() ? Sources{} : found->second);
    }
    out << count << "\n};\nconstexpr EnumerantRow enumerantRows[] = {\n";
    for (const auto& [value, added] : m_enumerants) {
        out << '{' << value << "U, " << count << ", " << added.size() << "},\n";
        add(added);
    }
    out << "};\nconstexpr std::uint16_t allSources[] = {\n" << sources << "};\n";
}
