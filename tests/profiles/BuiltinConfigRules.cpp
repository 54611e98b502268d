#include "BuiltinProfileRules.h"
#include "KeyTables.h"

#include <gtest/gtest.h>

namespace rules {

namespace {

/// What we ship in the attributes whose values have names.
const std::map<std::string, std::set<std::string>> namesInUse = {
    {"config_caveat", {"EGL_NONE", "EGL_SLOW_CONFIG"}},
    {"native_visual_type", {"EGL_NONE"}},
    {"transparency/type", {"EGL_NONE", "EGL_TRANSPARENT_RGB"}},
};

const std::set<std::string> surfaceBits = {"EGL_WINDOW_BIT", "EGL_PBUFFER_BIT", "EGL_PIXMAP_BIT",
    "EGL_MULTISAMPLE_RESOLVE_BOX_BIT", "EGL_SWAP_BEHAVIOR_PRESERVED_BIT"};

long long number(const Attributes& text, const std::string& name)
{
    return wholeNumber(text.at(name)).value_or(-1);
}

/// The keys of the attributes by their paths, such as "max_pbuffer/width".
const std::map<std::string, EGLAttribKey>& keysByPath()
{
    static const auto keys = [] {
        std::map<std::string, EGLAttribKey> byPath;
        visitEGLAttribKeys([&](const EGLAttribKey& key) {
            const std::string& first = key.xmlPath.front();
            byPath.emplace(key.xmlPath.size() == 1 ? first : first + "/" + key.xmlPath.back(), key);
        });
        return byPath;
    }();
    return keys;
}

bool isOfKind(const std::string& name, const std::string& value, ValueKind kind)
{
    if (kind == ValueKind::Boolean)
        return value == "EGL_TRUE" || value == "EGL_FALSE";
    if (kind == ValueKind::Enumerant && namesInUse.at(name).contains(value))
        return true;
    // A visual is a number of the window system where there is one.
    return (kind == ValueKind::Integer || name == "native_visual_type") && wholeNumber(value);
}

/// Every attribute of the vocabulary once, each with a value of its kind, and nothing else.
void checkVocabulary(const Attributes& text)
{
    for (const auto& [name, value] : text) {
        const auto found = keysByPath().find(name);
        ASSERT_NE(found, keysByPath().end()) << "no such attribute: " << name;
        EXPECT_TRUE(isOfKind(name, value, valueKind(found->second.kind))) << name << ": " << value;
    }
    for (const auto& [name, key] : keysByPath())
        ASSERT_TRUE(text.contains(name) || isMask(name)) << name;
}

void checkTransparency(const Attributes& text)
{
    for (const std::string colour : {"red", "green", "blue"}) {
        const long long key = number(text, "transparency/" + colour);
        const bool keyed = text.at("transparency/type") == "EGL_TRANSPARENT_RGB";
        EXPECT_GE(key, 0) << colour;
        EXPECT_LT(key, keyed ? 1LL << number(text, colour + "_size") : 1) << colour;
    }
}

} // namespace

bool isMask(const std::string& attribute)
{
    const auto found = keysByPath().find(attribute);
    return found != keysByPath().end() && found->second.kind == KeyKind::Mask;
}

std::string renderableBit(int version)
{
    return version == 1 ? "EGL_OPENGL_ES_BIT" : version == 2 ? "EGL_OPENGL_ES2_BIT" : "EGL_OPENGL_ES3_BIT";
}

void checkAttributes(const Attributes& text)
{
    ASSERT_NO_FATAL_FAILURE(checkVocabulary(text));
    long long colours = 0;
    for (const std::string channel : {"red_size", "green_size", "blue_size", "alpha_size"}) {
        EXPECT_GE(number(text, channel), channel == "alpha_size" ? 0 : 4) << channel;
        EXPECT_LE(number(text, channel), 10) << channel;
        colours += number(text, channel);
    }
    EXPECT_EQ(number(text, "buffer_size"), colours);
    EXPECT_TRUE((std::set<long long>{0, 16, 24, 32}.contains(number(text, "depth_size"))));
    EXPECT_TRUE((std::set<long long>{0, 8}.contains(number(text, "stencil_size"))));
    EXPECT_TRUE((std::set<long long>{0, 2, 4, 8, 16}.contains(number(text, "samples"))));
    EXPECT_EQ(number(text, "sample_buffers"), number(text, "samples") > 0 ? 1 : 0);
    EXPECT_GE(number(text, "swap_interval/min"), 0);
    EXPECT_LE(number(text, "swap_interval/min"), number(text, "swap_interval/max"));
    checkTransparency(text);
}

void checkSurfaces(const Attributes& text, const std::set<std::string>& surfaces)
{
    ASSERT_FALSE(testing::Test::HasFatalFailure());
    EXPECT_FALSE(surfaces.empty());
    for (const std::string& surface : surfaces)
        EXPECT_TRUE(surfaceBits.contains(surface)) << surface;
    const bool window = surfaces.contains("EGL_WINDOW_BIT");
    EXPECT_TRUE(window || !surfaces.contains("EGL_SWAP_BEHAVIOR_PRESERVED_BIT"));
    EXPECT_TRUE(number(text, "samples") > 0 || !surfaces.contains("EGL_MULTISAMPLE_RESOLVE_BOX_BIT"));
    EXPECT_TRUE(window || number(text, "level") == 0);

    const bool pbuffer = surfaces.contains("EGL_PBUFFER_BIT");
    const long long width = number(text, "max_pbuffer/width");
    const long long height = number(text, "max_pbuffer/height");
    const long long pixels = number(text, "max_pbuffer/pixels");
    EXPECT_EQ(width > 0 && height > 0, pbuffer);
    EXPECT_LE(pixels, width * height);
    EXPECT_GE(pixels, width > height ? width : height);

    EXPECT_TRUE(pbuffer || text.at("bind_to_texture_rgb") == "EGL_FALSE");
    EXPECT_TRUE(
        (pbuffer && number(text, "alpha_size") > 0) || text.at("bind_to_texture_rgba") == "EGL_FALSE");
}

} // namespace rules
