#include "ConfigChoice.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <map>

namespace layer {

namespace {

enum class Match { AtLeast, Exact, Mask, Ignored };

struct Criterion {
    Match match;
    EGLint fallback;
};

constexpr EGLint componentTypeAttribute = 0x3339; ///< EGL_COLOR_COMPONENT_TYPE_EXT
constexpr EGLint componentTypeFixed = 0x333A; ///< EGL_COLOR_COMPONENT_TYPE_FIXED_EXT

const std::map<EGLint, Criterion>& criteria()
{
    using enum Match;
    static const std::map<EGLint, Criterion> all{
        {EGL_BUFFER_SIZE, {AtLeast, 0}},
        {EGL_RED_SIZE, {AtLeast, 0}},
        {EGL_GREEN_SIZE, {AtLeast, 0}},
        {EGL_BLUE_SIZE, {AtLeast, 0}},
        {EGL_LUMINANCE_SIZE, {AtLeast, 0}},
        {EGL_ALPHA_SIZE, {AtLeast, 0}},
        {EGL_ALPHA_MASK_SIZE, {AtLeast, 0}},
        {EGL_DEPTH_SIZE, {AtLeast, 0}},
        {EGL_STENCIL_SIZE, {AtLeast, 0}},
        {EGL_SAMPLE_BUFFERS, {AtLeast, 0}},
        {EGL_SAMPLES, {AtLeast, 0}},
        {EGL_BIND_TO_TEXTURE_RGB, {Exact, EGL_DONT_CARE}},
        {EGL_BIND_TO_TEXTURE_RGBA, {Exact, EGL_DONT_CARE}},
        {EGL_COLOR_BUFFER_TYPE, {Exact, EGL_RGB_BUFFER}},
        {EGL_CONFIG_CAVEAT, {Exact, EGL_DONT_CARE}},
        {EGL_CONFIG_ID, {Exact, EGL_DONT_CARE}},
        {EGL_LEVEL, {Exact, 0}},
        {EGL_MAX_SWAP_INTERVAL, {Exact, EGL_DONT_CARE}},
        {EGL_MIN_SWAP_INTERVAL, {Exact, EGL_DONT_CARE}},
        {EGL_NATIVE_RENDERABLE, {Exact, EGL_DONT_CARE}},
        {EGL_NATIVE_VISUAL_TYPE, {Exact, EGL_DONT_CARE}},
        {EGL_TRANSPARENT_TYPE, {Exact, EGL_NONE}},
        {EGL_TRANSPARENT_RED_VALUE, {Exact, EGL_DONT_CARE}},
        {EGL_TRANSPARENT_GREEN_VALUE, {Exact, EGL_DONT_CARE}},
        {EGL_TRANSPARENT_BLUE_VALUE, {Exact, EGL_DONT_CARE}},
        {componentTypeAttribute, {Exact, componentTypeFixed}},
        {0x3142, {Exact, EGL_DONT_CARE}}, // EGL_RECORDABLE_ANDROID
        {0x3147, {Exact, EGL_DONT_CARE}}, // EGL_FRAMEBUFFER_TARGET_ANDROID
        {0x307F, {Exact, EGL_DONT_CARE}}, // EGL_Y_INVERTED_NOK
        {EGL_CONFORMANT, {Mask, 0}},
        {EGL_RENDERABLE_TYPE, {Mask, EGL_OPENGL_ES_BIT}},
        {EGL_SURFACE_TYPE, {Mask, EGL_WINDOW_BIT}},
        {EGL_MATCH_NATIVE_PIXMAP, {Ignored, EGL_NONE}},
        {EGL_MAX_PBUFFER_WIDTH, {Ignored, 0}},
        {EGL_MAX_PBUFFER_HEIGHT, {Ignored, 0}},
        {EGL_MAX_PBUFFER_PIXELS, {Ignored, 0}},
        {EGL_NATIVE_VISUAL_ID, {Ignored, 0}},
    };
    return all;
}

/// What is asked for: an attribute and its value.
using Wanted = std::map<EGLint, EGLint>;

EGLint valueOf(const std::map<EGLint, EGLint>& values, EGLint attribute, EGLint fallback = 0)
{
    const auto found = values.find(attribute);
    return found == values.end() ? fallback : found->second;
}

bool matches(const device::Config& config, const Wanted& wanted)
{
    for (const auto& [attribute, value] : wanted) {
        const Match match = criteria().at(attribute).match;
        const bool isColorKey =
            attribute >= EGL_TRANSPARENT_BLUE_VALUE && attribute <= EGL_TRANSPARENT_RED_VALUE;
        if (value == EGL_DONT_CARE || match == Match::Ignored
            || (isColorKey && wanted.at(EGL_TRANSPARENT_TYPE) != EGL_TRANSPARENT_RGB))
            continue;
        // What a config does not tell is as usual.
        const EGLint usual = criteria().at(attribute).fallback;
        const EGLint actual = valueOf(config, attribute,
            match == Match::Mask         ? 0
                : usual == EGL_DONT_CARE ? value
                                         : usual);
        if ((match == Match::AtLeast && actual < value) || (match == Match::Exact && actual != value)
            || (match == Match::Mask && (actual & value) != value))
            return false;
    }
    return true;
}

/// What configs are sorted by, the first number first.
std::array<EGLint, 10> rankOf(const device::Config& config, const Wanted& wanted)
{
    EGLint bits = 0;
    for (const EGLint size : {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE, EGL_ALPHA_SIZE}) {
        const EGLint asked = wanted.at(size);
        bits += asked != 0 && asked != EGL_DONT_CARE ? valueOf(config, size) : 0;
    }
    const EGLint caveat = valueOf(config, EGL_CONFIG_CAVEAT, EGL_NONE);
    const EGLint caveatRank = caveat == EGL_NONE ? 0 : caveat == EGL_SLOW_CONFIG ? 1 : 2;
    return {valueOf(config, componentTypeAttribute, componentTypeFixed), caveatRank, -bits,
        valueOf(config, EGL_BUFFER_SIZE), valueOf(config, EGL_SAMPLE_BUFFERS), valueOf(config, EGL_SAMPLES),
        valueOf(config, EGL_DEPTH_SIZE), valueOf(config, EGL_STENCIL_SIZE),
        valueOf(config, EGL_ALPHA_MASK_SIZE), valueOf(config, EGL_CONFIG_ID)};
}

int missingBits(EGLint wanted, EGLint actual)
{
    return std::popcount(static_cast<unsigned>(wanted & ~actual));
}

} // namespace

std::optional<std::vector<std::size_t>> chooseConfigs(
    const std::vector<device::Config>& configs, const EGLint* attributes)
{
    Wanted wanted;
    for (const auto& [attribute, criterion] : criteria())
        wanted[attribute] = criterion.fallback;
    for (; attributes && *attributes != EGL_NONE; attributes += 2) {
        const auto asked = wanted.find(attributes[0]);
        if (asked == wanted.end())
            return std::nullopt;
        asked->second = attributes[1];
    }
    // An id says it all.
    if (const EGLint id = wanted[EGL_CONFIG_ID]; id != EGL_DONT_CARE) {
        const auto found = std::ranges::find(
            configs, id, [](const device::Config& config) { return valueOf(config, EGL_CONFIG_ID); });
        return found == configs.end() ? std::vector<std::size_t>{}
                                      : std::vector{static_cast<std::size_t>(found - configs.begin())};
    }
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < configs.size(); ++i) {
        if (matches(configs[i], wanted))
            chosen.push_back(i);
    }
    std::ranges::stable_sort(chosen, {}, [&](std::size_t i) { return rankOf(configs[i], wanted); });
    return chosen;
}

StandIn standIn(const device::Config& wanted, const device::Config& host, EGLint hostSurfaces)
{
    constexpr int unusable = 10000;
    constexpr int missing = 100;
    constexpr EGLint surfaces = EGL_WINDOW_BIT | EGL_PBUFFER_BIT | EGL_PIXMAP_BIT;
    constexpr EGLint contexts = EGL_OPENGL_ES_BIT | EGL_OPENGL_ES2_BIT | EGL_OPENGL_ES3_BIT;
    const EGLint wantedSurfaces = valueOf(wanted, EGL_SURFACE_TYPE, EGL_WINDOW_BIT) & surfaces & hostSurfaces;
    const int lacking = missingBits(wantedSurfaces, valueOf(host, EGL_SURFACE_TYPE))
        + missingBits(valueOf(wanted, EGL_RENDERABLE_TYPE) & contexts, valueOf(host, EGL_RENDERABLE_TYPE));
    StandIn result{unusable * lacking, lacking != 0};
    const auto compare = [&](EGLint size, int costOfMore) {
        const int difference = valueOf(host, size) - valueOf(wanted, size);
        result.cost += difference < 0 ? missing - difference : costOfMore * difference;
        result.isLess = result.isLess || difference < 0;
    };
    for (const EGLint size : {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE, EGL_ALPHA_SIZE})
        compare(size, 10);
    for (const EGLint size : {EGL_DEPTH_SIZE, EGL_STENCIL_SIZE, EGL_SAMPLES})
        compare(size, 1);
    return result;
}

} // namespace layer
