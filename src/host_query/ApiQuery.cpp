#include "ApiQuery.h"

#include "GlEnumerants.h"
#include "HostDisplay.h"
#include "LimitKeys.h"
#include "ProfileData.h"
#include "Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace host_query {

namespace {

using Enumerant = std::uint32_t;
using Integers = std::vector<std::int64_t>;

using GetError = Enumerant (*)();
using GetString = const unsigned char* (*)(Enumerant name);
using GetStringi = const unsigned char* (*)(Enumerant name, Enumerant index);
using GetIntegers = void (*)(Enumerant name, std::int32_t* values);
using GetIntegers64 = void (*)(Enumerant name, std::int64_t* values);
using GetIndexed = void (*)(Enumerant name, Enumerant index, std::int32_t* value);
using GetReals = void (*)(Enumerant name, float* values);
using GetPrecision = void (*)(Enumerant shader, Enumerant type, std::int32_t* range, std::int32_t* precision);
using GetFormat = void (*)(
    Enumerant target, Enumerant format, Enumerant name, std::int32_t size, std::int32_t* values);

/// More values than any list has; drivers that say so are not believed.
constexpr std::int64_t mostValues = 4096;
/// What no driver answers.
constexpr std::int32_t untouched = -0x5A5A5A5B;

/// What depends on the framebuffer.
constexpr std::array<std::string_view, 4> changing{
    "samples", "sample_buffers", "implementation_color_read_type", "implementation_color_read_format"};

/// Internal formats that renderbuffers may have, without "GL_".
constexpr std::array<const char*, 44> formats{"R8", "RG8", "RGB8", "RGB565", "RGBA4", "RGB5_A1", "RGBA8",
    "RGB10_A2", "SRGB8_ALPHA8", "DEPTH_COMPONENT16", "DEPTH_COMPONENT24", "DEPTH_COMPONENT32F",
    "DEPTH24_STENCIL8", "DEPTH32F_STENCIL8", "STENCIL_INDEX8", "R8I", "R8UI", "R16I", "R16UI", "R32I",
    "R32UI", "RG8I", "RG8UI", "RG16I", "RG16UI", "RG32I", "RG32UI", "RGBA8I", "RGBA8UI", "RGB10_A2UI",
    "RGBA16I", "RGBA16UI", "RGBA32I", "RGBA32UI", "R16F", "RG16F", "RGB16F", "RGBA16F", "R32F", "RG32F",
    "RGBA32F", "R11F_G11F_B10F", "RGB9_E5", "SRGB8"};

Enumerant valueOf(const std::string& name)
{
    return static_cast<Enumerant>(gl::enumerantValue(name).value_or(0));
}

ProfileNode leaf(const std::string& name, const std::string& value)
{
    return {name, value, {}};
}

/// The shortest text that reads back as exactly this value.
std::string shortest(float value)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.begin(), text.end(), value).ptr};
}

class Api {
public:
    Api(const HostDisplay& display, int version, int section, ProfileData& profile)
        : m_display(display)
        , m_version(version)
        , m_nodes(profile.capabilities()[section])
        , m_extensions(profile.extensions()[section])
        , m_error(display.gl<GetError>("glGetError"))
        , m_integers(display.gl<GetIntegers>("glGetIntegerv"))
        , m_reals(display.gl<GetReals>("glGetFloatv"))
    {
        if (!m_error || !m_integers || !m_reals || !display.gl<GetString>("glGetString"))
            throw std::runtime_error("its functions are missing");
    }

    std::string text(const char* name) const
    {
        const auto* answer = m_display.gl<GetString>("glGetString")(valueOf(name));
        clearErrors();
        return answer ? reinterpret_cast<const char*>(answer) : "";
    }

    void addTexts()
    {
        addLeaf("version", text("GL_VERSION"));
        if (m_version >= 20)
            addLeaf("shading_language_version", text("GL_SHADING_LANGUAGE_VERSION"));
    }

    void addExtensions()
    {
        const auto get = m_version >= 30 ? m_display.gl<GetStringi>("glGetStringi") : nullptr;
        if (!get) {
            std::istringstream words(text("GL_EXTENSIONS"));
            for (std::string word; words >> word;)
                m_extensions.push_back(word);
            return;
        }
        const auto count = integers(valueOf("GL_NUM_EXTENSIONS"), 1);
        for (std::int64_t i = 0; count && i < std::min(count->front(), mostValues); ++i) {
            if (const auto* name = get(valueOf("GL_EXTENSIONS"), static_cast<Enumerant>(i)))
                m_extensions.emplace_back(reinterpret_cast<const char*>(name));
        }
        clearErrors();
    }

    void addCapability(const ESCapabilityKey& key)
    {
        if (std::find(changing.begin(), changing.end(), key.xmlName.text) != changing.end())
            return;
        if (!key.single) {
            addList(key);
            return;
        }
        const std::vector<std::string> values = valuesOf(key);
        if (values.empty())
            return;
        ProfileNode node = leaf(key.xmlName.text, key.children.empty() ? values.front() : "");
        for (std::size_t i = 0; i < key.children.size(); ++i)
            node.children.push_back(leaf(key.children[i].xmlName.text, values[i]));
        m_nodes.push_back(std::move(node));
    }

    void addPrecisions()
    {
        const auto get = m_display.gl<GetPrecision>("glGetShaderPrecisionFormat");
        for (const char* shader : {"GL_VERTEX_SHADER", "GL_FRAGMENT_SHADER"}) {
            for (const char* type : {"GL_LOW_FLOAT", "GL_MEDIUM_FLOAT", "GL_HIGH_FLOAT", "GL_LOW_INT",
                     "GL_MEDIUM_INT", "GL_HIGH_INT"}) {
                std::array<std::int32_t, 2> range{untouched, untouched};
                std::int32_t precision = 0;
                if (get)
                    get(valueOf(shader), valueOf(type), range.data(), &precision);
                if (clearErrors() || range[1] == untouched)
                    continue;
                m_nodes.push_back({"precision_format", {},
                    {leaf("shader", shader), leaf("type", type), leaf("min", std::to_string(range[0])),
                        leaf("max", std::to_string(range[1])),
                        leaf("precision", std::to_string(precision))}});
            }
        }
    }

    void addFormats()
    {
        const auto get = m_display.gl<GetFormat>("glGetInternalformativ");
        const Enumerant target = valueOf("GL_RENDERBUFFER");
        for (const char* name : formats) {
            const Enumerant format = valueOf(std::string("GL_") + name);
            std::int32_t count = untouched;
            if (get)
                get(target, format, valueOf("GL_NUM_SAMPLE_COUNTS"), 1, &count);
            if (clearErrors() || count < 0 || count > mostValues)
                continue;
            std::vector<std::int32_t> samples(static_cast<std::size_t>(count));
            if (count > 0)
                get(target, format, valueOf("GL_SAMPLES"), count, samples.data());
            ProfileNode node{"internal_format", {}, {leaf("name", name)}};
            for (const std::int32_t each : samples)
                node.children.push_back(leaf("samples", std::to_string(each)));
            if (samples.empty())
                node.children.push_back(leaf("samples", "0"));
            if (!clearErrors())
                m_nodes.push_back(std::move(node));
        }
    }

private:
    void addLeaf(const char* name, const std::string& value)
    {
        if (!value.empty() && platform::isUtf8(value))
            m_nodes.push_back(leaf(name, value));
    }

    /// Whether there were any.
    bool clearErrors() const
    {
        constexpr int mostErrors = 20;
        bool had = false;
        for (int i = 0; i < mostErrors && m_error() != 0; ++i)
            had = true;
        return had;
    }

    /// That many values; nothing where the context does not know the query.
    std::optional<Integers> integers(Enumerant name, std::size_t count) const
    {
        const auto wide = m_version >= 30 ? m_display.gl<GetIntegers64>("glGetInteger64v") : nullptr;
        // Room for drivers that answer more than was asked for.
        constexpr std::size_t spare = 16;
        Integers values(count + spare, untouched);
        if (wide) {
            wide(name, values.data());
        } else {
            std::vector<std::int32_t> narrow(count + spare, untouched);
            m_integers(name, narrow.data());
            std::copy(narrow.begin(), narrow.end(), values.begin());
        }
        values.resize(count);
        if (clearErrors() || (count > 0 && values.back() == untouched))
            return std::nullopt;
        return values;
    }

    /// As texts; none where the context does not know the query.
    std::vector<std::string> valuesOf(const ESCapabilityKey& key) const
    {
        const std::size_t count = std::max<std::size_t>(key.children.size(), 1);
        std::vector<std::string> texts;
        if (valueKind(key.kind) == ValueKind::Real) {
            constexpr float noValue = -12345.5F;
            std::array<float, 16> reals{};
            reals.fill(noValue);
            m_reals(key.value, reals.data());
            if (clearErrors() || reals[count - 1] == noValue)
                return {};
            for (std::size_t i = 0; i < count && std::isfinite(reals[i]); ++i)
                texts.push_back(shortest(reals[i]));
            return texts.size() == count ? texts : std::vector<std::string>();
        }
        const std::optional<Integers> values = count == 3 ? triple(key.value) : integers(key.value, count);
        for (std::size_t i = 0; values && i < count; ++i)
            texts.push_back(std::to_string((*values)[i]));
        return texts;
    }

    std::optional<Integers> triple(Enumerant name) const
    {
        const auto get = m_display.gl<GetIndexed>("glGetIntegeri_v");
        Integers values;
        for (Enumerant i = 0; get && i < 3; ++i) {
            std::int32_t value = untouched;
            get(name, i, &value);
            if (clearErrors() || value == untouched)
                return std::nullopt;
            values.push_back(value);
        }
        return values.empty() ? std::nullopt : std::optional(values);
    }

    void addList(const ESCapabilityKey& key)
    {
        const std::string name = key.displayName.text;
        const auto count = integers(valueOf("GL_NUM_" + name.substr(3)), 1);
        if (!count || count->front() < 1 || count->front() > mostValues)
            return;
        const auto values = integers(key.value, static_cast<std::size_t>(count->front()));
        for (std::size_t i = 0; values && i < values->size(); ++i)
            m_nodes.push_back(leaf(key.xmlName.text, std::to_string((*values)[i])));
    }

    const HostDisplay& m_display;
    int m_version;
    std::vector<ProfileNode>& m_nodes;
    std::vector<std::string>& m_extensions;
    GetError m_error;
    GetIntegers m_integers;
    GetReals m_reals;
};

} // namespace

void addApi(const HostDisplay& display, int version, int section, ProfileData& profile)
{
    Api api(display, version, section, profile);
    profile.setVendor(api.text("GL_VENDOR"));
    profile.setRenderer(api.text("GL_RENDERER"));
    api.addTexts();
    api.addExtensions();
    visitESCapabilityKeyNodes([&api](const ESCapabilityKeyNode& node) { api.addCapability(node.key); });
    visitLimitKeys([&api](const ESCapabilityKey& key) { api.addCapability(key); });
    if (version >= 20)
        api.addPrecisions();
    if (version >= 30)
        api.addFormats();
}

} // namespace host_query
