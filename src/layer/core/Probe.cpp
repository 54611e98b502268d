#include "Probe.h"

#include "Device.h"
#include "ExtensionCatalogue.h"
#include "GlTypes.h"
#include "ProbeContext.h"
#include "Process.h"
#include "Records.h"
#include "TextBuffer.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <set>
#include <string_view>

#include <sys/utsname.h>

namespace layer {

namespace {

std::uint32_t codeOf(std::string_view version, const char* (*name)(std::uint32_t), std::uint32_t count)
{
    for (std::uint32_t code = 1; code <= count; ++code) {
        if (version.starts_with(name(code)))
            return code;
    }
    return 0;
}

/// "4.50" as in "GLSL 4.50"; the catalogue speaks of languages, drivers of their numbers.
std::uint32_t glslCodeOf(const std::string& version)
{
    const auto longName = [](std::uint32_t code) {
        return catalogue::glslVersionName(code, catalogue::GlslForm::Long);
    };
    return codeOf("GLSL " + version, longName, 13);
}

HostFacts probe(Host& host, EGLDisplay display)
{
    HostFacts facts;
    const ProbeContext context(host, display, EGL_OPENGL_API, EGL_OPENGL_BIT, nullptr);
    if (!context.isCurrent())
        return facts;
    facts.glVersionText = context.string(gl::version);
    facts.glVersion = codeOf(facts.glVersionText, &catalogue::glVersionName, 19);
    facts.glslVersion = glslCodeOf(context.string(gl::shadingLanguageVersion));
    std::set<std::string, std::less<>> offered;
    const GLint count = context.integer(gl::numExtensions);
    for (GLint i = 0; i < count; ++i)
        offered.insert(context.extension(static_cast<GLuint>(i)));
    for (std::uint32_t code = 1; code <= catalogue::hostExtensionCount; ++code) {
        if (offered.contains(catalogue::hostExtensionName(code)))
            facts.glExtensions.push_back(code);
    }
    return facts;
}

struct Limit {
    GLenum name;
    const char* text;
};

constexpr Limit limits[] = {
    {0x0D33, "GL_MAX_TEXTURE_SIZE"},
    {0x851C, "GL_MAX_CUBE_MAP_TEXTURE_SIZE"},
    {0x84E8, "GL_MAX_RENDERBUFFER_SIZE"},
    {0x8869, "GL_MAX_VERTEX_ATTRIBS"},
    {0x8DFB, "GL_MAX_VERTEX_UNIFORM_VECTORS"},
    {0x8DFC, "GL_MAX_VARYING_VECTORS"},
    {0x8DFD, "GL_MAX_FRAGMENT_UNIFORM_VECTORS"},
    {0x8872, "GL_MAX_TEXTURE_IMAGE_UNITS"},
    {0x8B4D, "GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS"},
};

void reportEs(Host& host, EGLDisplay display)
{
    const EGLint attributes[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    const ProbeContext context(host, display, EGL_OPENGL_ES_API, EGL_OPENGL_ES2_BIT, attributes);
    records::reportText("Contexts of OpenGL ES 2.0 and later", context.isCurrent());
    if (!context.isCurrent())
        return;
    for (const Limit& limit : limits)
        records::reportDetail(limit.text, static_cast<std::uint32_t>(context.integer(limit.name)));
    TextBuffer<1024> device;
    device << context.string(gl::vendor) << ", " << context.string(gl::renderer) << '\n'
           << context.string(gl::version) << ", " << context.string(gl::shadingLanguageVersion);
    records::reportKeyedText(1, device.text());
}

void reportEgl(Host& host, EGLDisplay display)
{
    const auto query = host.function<const char* (*)(EGLDisplay, EGLint)>(Fn::eglQueryString);
    TextBuffer<8000> text;
    text << "EGL " << query(display, EGL_VERSION) << ", " << query(display, EGL_VENDOR) << '\n'
         << query(display, EGL_EXTENSIONS);
    records::reportKeyedText(2, text.text());
    host.function<EGLint (*)()>(Fn::eglGetError)();
}

void reportSystem()
{
    utsname system{};
    if (uname(&system) != 0)
        return;
    TextBuffer<512> text;
    text << static_cast<const char*>(system.sysname) << ' ' << static_cast<const char*>(system.release)
         << ", " << static_cast<const char*>(system.machine);
    records::reportOtherKeyedText(2, text.text());
}

} // namespace

const HostFacts& hostFacts(Host& host, EGLDisplay display)
{
    static std::once_flag once;
    static const HostFacts* facts = nullptr;
    std::call_once(once, [&] { facts = new HostFacts(probe(host, display)); });
    return *facts;
}

void sendReport(Host& host, EGLDisplay display)
{
    static std::atomic_flag sent = ATOMIC_FLAG_INIT;
    if (!writer() || !isFirst(sent))
        return;
    if (const device::Table* device = emulatedDevice())
        records::information(deviceNotice(*device));
    const HostFacts& facts = hostFacts(host, display);
    records::reportNumber(static_cast<std::uint32_t>(facts.glExtensions.size()));
    for (std::uint32_t code = 1; code <= catalogue::hostExtensionCount; ++code)
        records::reportFlag(code, std::ranges::binary_search(facts.glExtensions, code));
    records::reportText("Desktop OpenGL", facts.glVersion != 0);
    reportEs(host, display);
    reportEgl(host, display);
    if (const device::Table* device = emulatedDevice())
        records::reportOtherKeyedText(3, deviceNotice(*device));
    if (!facts.glVersionText.empty())
        records::reportOtherKeyedText(1, "OpenGL " + facts.glVersionText);
    reportSystem();
    records::reportComplete();
}

} // namespace layer
