#include "ConfigQuery.h"

#include "EglEnumerants.h"
#include "EglStrings.h"
#include "HostDisplay.h"
#include "KeyTables.h"
#include "ProfileData.h"
#include "ValueNames.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace host_query {

namespace {

/// Attributes beyond the key table. EGL_NATIVE_VISUAL_ID is left out: it is of use on one display only.
constexpr std::array<std::pair<const char*, EGLint>, 6> furtherAttributes{
    {{"alpha_mask_size", EGL_ALPHA_MASK_SIZE}, {"luminance_size", EGL_LUMINANCE_SIZE},
        {"color_buffer_type", EGL_COLOR_BUFFER_TYPE}, {"color_component_type", EGL_COLOR_COMPONENT_TYPE_EXT},
        {"recordable", EGL_RECORDABLE_ANDROID}, {"framebuffer_target", EGL_FRAMEBUFFER_TARGET_ANDROID}}};

/// Puts a value where its path says, into the element that another value of it has made.
void add(std::vector<ProfileNode>& nodes, const std::deque<std::string>& path, const std::string& value)
{
    if (path.size() == 1) {
        nodes.push_back({path.front(), value, {}});
        return;
    }
    auto whole = std::find_if(
        nodes.begin(), nodes.end(), [&path](const ProfileNode& node) { return node.name == path.front(); });
    if (whole == nodes.end())
        whole = nodes.insert(nodes.end(), ProfileNode{path.front(), {}, {}});
    whole->children.push_back({path.back(), value, {}});
}

/// The bits by their names, those without as numbers.
std::vector<std::string> bitsOf(const EGLAttribKey& key, EGLint value)
{
    std::vector<std::string> bits;
    auto left = static_cast<std::uint32_t>(value);
    for (const std::string_view name : egl::bitNames(key.displayName.text)) {
        const auto bit = static_cast<std::uint32_t>(egl::enumerantValue(name).value_or(0));
        if ((left & bit) != 0)
            bits.emplace_back(name);
        left &= ~bit;
    }
    for (std::uint32_t bit = 1; bit != 0; bit <<= 1U) {
        if ((left & bit) != 0)
            bits.push_back(std::to_string(static_cast<EGLint>(bit)));
    }
    return bits.empty() ? std::vector<std::string>{"0"} : bits;
}

} // namespace

void addConfigs(const HostDisplay& display, ProfileData& profile)
{
    const auto getConfigs = display.egl<decltype(&::eglGetConfigs)>("eglGetConfigs");
    const auto getAttribute = display.egl<decltype(&::eglGetConfigAttrib)>("eglGetConfigAttrib");
    EGLint count = 0;
    getConfigs(display.display(), nullptr, 0, &count);
    std::vector<EGLConfig> configs(static_cast<std::size_t>(std::max(count, 0)));
    if (configs.empty() || getConfigs(display.display(), configs.data(), count, &count) == EGL_FALSE
        || count < 1)
        throw std::runtime_error("the display has no configs");
    configs.resize(std::min(configs.size(), static_cast<std::size_t>(count)));
    for (EGLConfig config : configs) {
        EGLint id = 0;
        getAttribute(display.display(), config, EGL_CONFIG_ID, &id);
        std::vector<ProfileNode>& nodes = profile.configs()[id];
        EGLint value = 0;
        visitEGLAttribKeys([&](const EGLAttribKey& key) {
            if (getAttribute(display.display(), config, key.value, &value) == EGL_FALSE)
                return;
            if (key.kind != KeyKind::Mask) {
                add(nodes, key.xmlPath, value_names::eglValue(key, value));
                return;
            }
            for (const std::string& bit : bitsOf(key, value))
                add(nodes, key.xmlPath, bit);
        });
        for (const auto& [name, attribute] : furtherAttributes) {
            if (getAttribute(display.display(), config, attribute, &value) != EGL_FALSE)
                add(nodes, {name}, std::to_string(value));
        }
    }
    EglStrings strings{display.text(EGL_VENDOR), display.text(EGL_VERSION), {}};
    std::istringstream words(display.text(EGL_EXTENSIONS));
    for (std::string word; words >> word;)
        strings.extensions.push_back(word);
    setEglStrings(profile, strings);
}

} // namespace host_query
