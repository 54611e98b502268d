// Queries that a device answers in place of the host.
#include "DeviceQueries.h"

#include "Checks.h"
#include "DeviceGate.h"

#include <algorithm>
#include <optional>

namespace layer {

namespace {

using Numbers = std::vector<device::Number>;

/// The list whose length a state is; gl::none for another state.
GLenum countedList(GLenum name)
{
    switch (name) {
    case gl::numCompressedTextureFormats:
        return gl::compressedTextureFormats;
    case gl::numProgramBinaryFormats:
        return gl::programBinaryFormats;
    case gl::numShaderBinaryFormats:
        return gl::shaderBinaryFormats;
    default:
        return gl::none;
    }
}

/// How many numbers a query of a state writes, so that a profile cannot make it write more; nothing for a
/// list, whose length a program asks for.
std::optional<std::size_t> sizeOf(GLenum name)
{
    switch (name) {
    case gl::compressedTextureFormats:
    case gl::programBinaryFormats:
    case gl::shaderBinaryFormats:
        return std::nullopt;
    case gl::maxViewportDims:
    case 0x0B12: // GL_SMOOTH_POINT_SIZE_RANGE
    case 0x0B22: // GL_SMOOTH_LINE_WIDTH_RANGE
    case 0x825D: // GL_VIEWPORT_BOUNDS_RANGE_OES
    case 0x846D: // GL_ALIASED_POINT_SIZE_RANGE
    case 0x846E: // GL_ALIASED_LINE_WIDTH_RANGE
    case 0x9381: // GL_MULTISAMPLE_LINE_WIDTH_RANGE
        return 2;
    default:
        return 1;
    }
}

/// Where the state depends on the framebuffer, what the device says is about the one of the surface.
bool isOfAnotherFramebuffer(const Context& context, GLenum name)
{
    const bool isOfDrawing = name == gl::samples || name == gl::sampleBuffers;
    const bool isOfReading =
        name == gl::implementationColorReadFormat || name == gl::implementationColorReadType;
    if (!isOfDrawing && !isOfReading)
        return false;
    const bool hasTwo = context.esVersion >= 30;
    GLint bound = 0;
    context.host->function<void (*)(GLenum, GLint*)>(Fn::glGetIntegerv)(
        hasTwo && isOfReading ? gl::readFramebufferBinding : gl::framebufferBinding, &bound);
    return bound != 0;
}

std::optional<std::int64_t> stateOfVersion(const device::Api& api, GLenum name)
{
    const int version = offeredVersion(api);
    if (version < 30)
        return std::nullopt;
    switch (name) {
    case gl::majorVersion:
        return version / 10;
    case gl::minorVersion:
        return version % 10;
    case gl::numExtensions:
        return static_cast<std::int64_t>(api.extensions.size());
    default:
        return std::nullopt;
    }
}

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string versionText(const device::Table& table, int version)
{
    std::string text = apiName(version);
    if (version < 20)
        text.insert(std::string_view("OpenGL ES").size(), "-CM");
    return table.vendor.empty() ? text : text + ' ' + table.vendor;
}

std::string languageText(int version)
{
    const int language = version < 30 ? 10 : version;
    return "OpenGL ES GLSL ES " + std::to_string(language / 10) + '.' + std::to_string(language % 10) + '0';
}

std::string textOr(const device::Api& api, GLenum name, const std::string& fallback)
{
    const auto found = api.texts.find(name);
    return found == api.texts.end() ? fallback : found->second;
}

} // namespace

namespace {

/// All that the device says of a state.
Numbers allOfState(const Context& context, GLenum name)
{
    if (!context.gate || context.gate->blocks(name))
        return {};
    const device::Api& api = context.gate->api();
    if (const std::optional<std::int64_t> value = stateOfVersion(api, name))
        return {*value};
    const auto list = api.capabilities.find(countedList(name));
    if (list != api.capabilities.end())
        return {static_cast<std::int64_t>(list->second.size())};
    const auto found = api.capabilities.find(name);
    if (found == api.capabilities.end() || isOfAnotherFramebuffer(context, name))
        return {};
    return found->second;
}

} // namespace

std::vector<device::Number> deviceState(const Context& context, GLenum name)
{
    Numbers all = allOfState(context, name);
    const std::optional<std::size_t> size = sizeOf(name);
    // What a query does not write whole is the host's.
    if (size && all.size() != *size)
        all.clear();
    return all;
}

std::vector<device::Number> deviceState(const Context& context, GLenum name, GLuint index)
{
    const Numbers all = allOfState(context, name);
    return index < all.size() ? Numbers{all[index]} : Numbers{};
}

DeviceStrings::DeviceStrings(const device::Table& table, const device::Api& api)
    : m_vendor(table.vendor)
    , m_renderer(table.renderer)
    , m_version(textOr(api, gl::version, versionText(table, api.version)))
    , m_language(textOr(api, gl::shadingLanguageVersion, languageText(api.version)))
    , m_extensions(joined(api.extensions))
{
}

const char* DeviceStrings::find(GLenum name) const
{
    switch (name) {
    case gl::vendor:
        return m_vendor.c_str();
    case gl::renderer:
        return m_renderer.c_str();
    case gl::version:
        return m_version.c_str();
    case gl::shadingLanguageVersion:
        return m_language.c_str();
    case gl::extensions:
        return m_extensions.c_str();
    default:
        return nullptr;
    }
}

namespace hooks {

const GLubyte* glGetString(GLenum name)
{
    const DeviceGate* gate = currentContext().gate;
    const char* text = gate && !gate->blocks(name) ? gate->strings().find(name) : nullptr;
    return text ? reinterpret_cast<const GLubyte*>(text) : generated::glGetString(name);
}

const GLubyte* glGetStringi(GLenum name, GLuint index)
{
    Context& context = currentContext();
    if (!context.gate || context.gate->blocks(Fn::glGetStringi) || name != gl::extensions)
        return generated::glGetStringi(name, index);
    const std::vector<std::string>& extensions = context.gate->api().extensions;
    if (index < extensions.size())
        return reinterpret_cast<const GLubyte*>(extensions[index].c_str());
    refuseGl(context, Fn::glGetStringi, {argument(name), argument(index)}, gl::invalidValue,
        context.gate->table().name + " has " + std::to_string(extensions.size()) + " extensions");
    return nullptr;
}

void glGetShaderPrecisionFormat(GLenum shaderType, GLenum precisionType, GLint* range, GLint* precision)
{
    const DeviceGate* gate = currentContext().gate;
    const device::Api* api = gate && !gate->blocks(Fn::glGetShaderPrecisionFormat) ? &gate->api() : nullptr;
    const auto found =
        api ? api->precisions.find({shaderType, precisionType}) : decltype(api->precisions.begin()){};
    if (!api || found == api->precisions.end()) {
        generated::glGetShaderPrecisionFormat(shaderType, precisionType, range, precision);
        return;
    }
    range[0] = found->second[0];
    range[1] = found->second[1];
    *precision = found->second[2];
}

void glGetInternalformativ(GLenum target, GLenum internalFormat, GLenum name, GLsizei size, GLint* values)
{
    const DeviceGate* gate = currentContext().gate;
    const device::Api* api = gate && !gate->blocks(Fn::glGetInternalformativ) ? &gate->api() : nullptr;
    const bool isTarget = target == gl::renderbuffer || target == gl::texture2DMultisample
        || target == gl::texture2DMultisampleArray;
    const bool isAnswered = api && isTarget && api->sampleCounts.contains(internalFormat)
        && !gate->blocks(target) && (name == gl::samples || name == gl::numSampleCounts) && size >= 0;
    if (!isAnswered) {
        generated::glGetInternalformativ(target, internalFormat, name, size, values);
        return;
    }
    std::vector<std::int32_t> counts = api->sampleCounts.at(internalFormat);
    std::erase(counts, 0);
    if (name == gl::numSampleCounts)
        counts = {static_cast<std::int32_t>(counts.size())};
    std::copy_n(counts.begin(), std::min(counts.size(), static_cast<std::size_t>(size)), values);
}

} // namespace hooks

} // namespace layer
