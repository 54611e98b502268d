#include "DeviceOfProfile.h"

#include "EglEnumerants.h"
#include "EglStrings.h"
#include "GlEnumerants.h"
#include "LimitKeys.h"
#include "Numbers.h"
#include "PrintedText.h"
#include "ProfileData.h"
#include "ValueNames.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <sstream>

namespace launcher {

namespace {

using layer::device::Api;
using layer::device::Config;
using layer::device::Number;
using layer::device::Table;

// eglQueryString() takes these.
constexpr std::int32_t eglVendor = 0x3053;
constexpr std::int32_t eglVersion = 0x3054;
constexpr std::int32_t eglExtensions = 0x3055;

/// Takes down what is not understood and where it stands.
using Complaint = std::function<void(const std::string&)>;

std::string trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
    return std::string(text.substr(first, text.find_last_not_of(blanks) + 1 - first));
}

std::optional<Number> numberIn(const std::string& text)
{
    if (const auto integer = platform::parseInteger(text))
        return *integer;
    if (const auto hexadecimal = platform::parseHexadecimal(text))
        return std::int64_t{*hexadecimal};
    if (const auto value = gl::enumerantValue(trimmed(text)))
        return std::int64_t{static_cast<std::uint32_t>(*value)};
    if (const auto real = platform::parseReal(text))
        return *real;
    return std::nullopt;
}

std::optional<std::int32_t> integerIn(const std::string& text)
{
    const std::optional<Number> number = numberIn(text);
    const auto* integer = number ? std::get_if<std::int64_t>(&*number) : nullptr;
    if (!integer || !gl::isValue(*integer))
        return std::nullopt;
    return static_cast<std::int32_t>(*integer);
}

const ProfileNode* childNamed(const ProfileNode& node, std::string_view name)
{
    const auto found = std::find_if(node.children.begin(), node.children.end(),
        [name](const ProfileNode& child) { return child.name == name; });
    return found == node.children.end() ? nullptr : &*found;
}

std::optional<std::int32_t> integerOf(const ProfileNode& node, std::string_view part)
{
    const ProfileNode* child = childNamed(node, part);
    return child ? integerIn(child->value) : std::nullopt;
}

/// Each once, also where an element has several.
void addExtensions(Api& api, const std::vector<std::string>& elements)
{
    for (const std::string& element : elements) {
        std::istringstream words(element);
        for (std::string name; words >> name;) {
            if (std::find(api.extensions.begin(), api.extensions.end(), name) == api.extensions.end())
                api.extensions.push_back(name);
        }
    }
}

/// Reads the elements of one `es` section.
class ApiReader {
public:
    ApiReader(Api& api, const Complaint& complain)
        : m_api(api)
        , m_complain(complain)
    {
    }

    void read(const ProfileNode& node)
    {
        if (node.name == "internal_format")
            readSampleCounts(node);
        else if (node.name == "precision_format")
            readPrecision(node);
        else
            readCapability(node);
    }

private:
    void readSampleCounts(const ProfileNode& node)
    {
        const ProfileNode* name = childNamed(node, "name");
        const std::string text = name ? trimmed(name->value) : std::string();
        std::optional<std::int32_t> format = gl::enumerantValue("GL_" + text);
        if (!format)
            format = integerIn(text);
        std::vector<std::int32_t> counts;
        bool isRead = format.has_value();
        for (const ProfileNode& child : node.children) {
            if (child.name != "samples")
                continue;
            const auto count = integerIn(child.value);
            isRead = isRead && count && *count >= 0;
            if (isRead && *count > 0)
                counts.push_back(*count);
        }
        std::sort(counts.rbegin(), counts.rend());
        if (isRead)
            m_api.sampleCounts.emplace(static_cast<std::uint32_t>(*format), counts);
        else
            m_complain("internal_format '" + text + "'");
    }

    void readPrecision(const ProfileNode& node)
    {
        const auto shader = integerOf(node, "shader");
        const auto type = integerOf(node, "type");
        const auto min = integerOf(node, "min");
        const auto max = integerOf(node, "max");
        const auto precision = integerOf(node, "precision");
        if (!shader || !type || !min || !max || !precision) {
            m_complain("precision_format");
            return;
        }
        m_api.precisions.emplace(
            std::pair(static_cast<std::uint32_t>(*shader), static_cast<std::uint32_t>(*type)),
            std::array{*min, *max, *precision});
    }

    void readCapability(const ProfileNode& node)
    {
        const std::optional<std::uint32_t> enumerant = capabilityEnumerant(node.name);
        if (!enumerant) {
            m_complain(node.name);
            return;
        }
        static constexpr std::array texts{"version", "shading_language_version", "vendor", "renderer"};
        if (std::find(texts.begin(), texts.end(), node.name) != texts.end()) {
            m_api.texts.emplace(*enumerant, trimmed(node.value));
            return;
        }
        const auto key = findCapability(ESCapabilityKey::XMLName{node.name});
        const std::optional<std::vector<Number>> values = valuesOf(node, key);
        if (!values)
            return;
        const auto [found, isNew] = m_api.capabilities.try_emplace(*enumerant, *values);
        if (isNew)
            return;
        // An element for each value. Of what takes one element, the first counts.
        if (!key || !key->single)
            found->second.insert(found->second.end(), values->begin(), values->end());
        else if (found->second != *values)
            m_complain("a second " + node.name);
    }

    std::optional<std::vector<Number>> valuesOf(
        const ProfileNode& node, const std::optional<ESCapabilityKey>& key)
    {
        std::vector<const ProfileNode*> holders;
        if (key && !key->children.empty()) {
            for (const ESCapabilityKey& part : key->children)
                holders.push_back(childNamed(node, part.xmlName.text));
        } else if (node.children.empty()) {
            holders.push_back(&node);
        } else {
            for (const ProfileNode& child : node.children)
                holders.push_back(&child);
        }
        std::vector<Number> values;
        for (const ProfileNode* holder : holders) {
            const auto number = holder ? numberIn(holder->value) : std::nullopt;
            if (!number) {
                m_complain(node.name + (holder ? " '" + trimmed(holder->value) + "'" : ""));
                return std::nullopt;
            }
            values.push_back(*number);
        }
        return values;
    }

    Api& m_api;
    const Complaint& m_complain;
};

std::optional<std::int32_t> eglIntegerIn(const std::string& text)
{
    if (const auto value = egl::enumerantValue(trimmed(text)))
        return value;
    if (const auto integer = platform::parseInt32(text))
        return integer;
    const auto hexadecimal = platform::parseHexadecimal(text);
    return hexadecimal ? std::optional(static_cast<std::int32_t>(*hexadecimal)) : std::nullopt;
}

/// Adds one value of a config. Attributes beyond the table are called like their enumerants.
void readAttribute(
    Config& config, const std::deque<std::string>& path, const std::string& text, const Complaint& complain)
{
    EGLAttribKey key;
    std::optional<std::int32_t> attribute;
    if (findEGLAttribKey(path, &key)) {
        attribute = key.value;
    } else if (path.size() == 1) {
        std::string name = "EGL_";
        for (const char letter : path.front())
            name += letter >= 'a' && letter <= 'z' ? char(letter - 'a' + 'A') : letter;
        for (const char* suffix : {"", "_EXT", "_ANDROID"}) {
            if (!attribute)
                attribute = egl::enumerantValue(name + suffix);
        }
    }
    const std::optional<std::int32_t> value = eglIntegerIn(text);
    if (!attribute || !value)
        complain(path.back() + " '" + trimmed(text) + "'");
    else if (key.kind == KeyKind::Mask)
        config[*attribute] |= *value;
    else
        config.emplace(*attribute, *value);
}

/// EGL_TRUE where a mask is meant says that the config conforms to all that it can do.
void setConformant(Config& config, const std::vector<ProfileNode>& attributes)
{
    const auto found = std::find_if(attributes.begin(), attributes.end(),
        [](const ProfileNode& node) { return node.name == "conformant"; });
    const auto conformant = egl::enumerantValue("EGL_CONFORMANT");
    const auto renderable = egl::enumerantValue("EGL_RENDERABLE_TYPE");
    if (found != attributes.end() && trimmed(found->value) == "EGL_TRUE" && config.contains(*renderable))
        config[*conformant] = config[*renderable];
}

Config configOf(int id, const std::vector<ProfileNode>& attributes, const Complaint& complain)
{
    Config config{{*egl::enumerantValue("EGL_CONFIG_ID"), id}};
    for (const ProfileNode& node : attributes) {
        for (const ProfileNode& child : node.children)
            readAttribute(config, {node.name, child.name}, child.value, complain);
        if (node.children.empty())
            readAttribute(config, {node.name}, node.value, complain);
    }
    setConformant(config, attributes);
    return config;
}

void addEglTexts(Table& table, const EglStrings& strings)
{
    if (!strings.vendor.empty())
        table.eglTexts.emplace(eglVendor, strings.vendor);
    if (!strings.version.empty())
        table.eglTexts.emplace(eglVersion, strings.version);
    std::string extensions;
    for (const std::string& extension : strings.extensions)
        extensions.append(extensions.empty() ? "" : " ").append(extension);
    if (!extensions.empty())
        table.eglTexts.emplace(eglExtensions, extensions);
}

} // namespace

Device deviceOf(const ProfileData& profile, bool isStrict)
{
    Device device;
    Table& table = device.table;
    table.name = printed(profile.displayName());
    table.vendor = trimmed(profile.vendor());
    table.renderer = trimmed(profile.renderer());
    table.strict = isStrict;
    std::map<int, Api> apis;
    std::string place;
    const Complaint complain = [&](const std::string& what) {
        device.misread.push_back(printed(what + " in " + place));
    };
    // Every supported version is a key of the extensions.
    for (const auto& [version, names] : profile.extensions()) {
        const std::optional<gl::EsVersion> known = esapi::versionOf(version);
        if (!known) {
            device.misread.push_back("version " + std::to_string(version) + " of OpenGL ES");
            continue;
        }
        place = value_names::esApi(std::to_string(version));
        const int number = static_cast<int>(*known);
        Api& api = apis[number];
        api.version = number;
        addExtensions(api, names);
        const auto nodes = profile.capabilities().find(version);
        ApiReader reader(api, complain);
        for (std::size_t i = 0; nodes != profile.capabilities().end() && i < nodes->second.size(); ++i)
            reader.read(nodes->second[i]);
    }
    for (auto& [number, api] : apis)
        table.apis.push_back(std::move(api));
    for (const auto& [id, attributes] : profile.configs()) {
        place = "config " + std::to_string(id);
        table.configs.push_back(configOf(id, attributes, complain));
    }
    addEglTexts(table, eglStrings(profile));
    return device;
}

} // namespace launcher
