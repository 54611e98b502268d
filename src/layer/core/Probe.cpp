#include "Probe.h"

#include "ExtensionCatalogue.h"
#include "GlTypes.h"
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

/// Puts the thread back as it was: what is current, and the API that is bound.
class ThreadState {
public:
    explicit ThreadState(Host& host)
        : m_host(host)
        , m_api(host.function<EGLenum (*)()>(Fn::eglQueryAPI)())
        , m_display(host.function<EGLDisplay (*)()>(Fn::eglGetCurrentDisplay)())
        , m_context(host.function<EGLContext (*)()>(Fn::eglGetCurrentContext)())
        , m_draw(host.function<EGLSurface (*)(EGLint)>(Fn::eglGetCurrentSurface)(EGL_DRAW))
        , m_read(host.function<EGLSurface (*)(EGLint)>(Fn::eglGetCurrentSurface)(EGL_READ))
    {
    }
    void restore(EGLDisplay probed)
    {
        const auto makeCurrent = m_host.function<decltype(&::eglMakeCurrent)>(Fn::eglMakeCurrent);
        if (m_context != EGL_NO_CONTEXT)
            makeCurrent(m_display, m_draw, m_read, m_context);
        else
            makeCurrent(probed, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        m_host.function<EGLBoolean (*)(EGLenum)>(Fn::eglBindAPI)(m_api);
        m_host.function<EGLint (*)()>(Fn::eglGetError)();
    }

private:
    Host& m_host;
    EGLenum m_api;
    EGLDisplay m_display;
    EGLContext m_context;
    EGLSurface m_draw;
    EGLSurface m_read;
};

/// A context of the layer's own, current while this lives.
class ProbeContext {
public:
    ProbeContext(Host& host, EGLDisplay display, EGLenum api, EGLint renderable, const EGLint* attributes)
        : m_host(host)
        , m_display(display)
        , m_before(host)
    {
        const EGLint wanted[] = {EGL_RENDERABLE_TYPE, renderable, EGL_SURFACE_TYPE, 0, EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        host.function<EGLBoolean (*)(EGLenum)>(Fn::eglBindAPI)(api);
        host.function<decltype(&::eglChooseConfig)>(Fn::eglChooseConfig)(display, wanted, &config, 1, &count);
        if (count < 1)
            return;
        m_context = host.function<decltype(&::eglCreateContext)>(Fn::eglCreateContext)(
            display, config, EGL_NO_CONTEXT, attributes);
        if (m_context == EGL_NO_CONTEXT)
            return;
        const auto makeCurrent = host.function<decltype(&::eglMakeCurrent)>(Fn::eglMakeCurrent);
        m_isCurrent = makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context) == EGL_TRUE;
    }
    ~ProbeContext()
    {
        m_before.restore(m_display);
        if (m_context != EGL_NO_CONTEXT)
            m_host.function<EGLBoolean (*)(EGLDisplay, EGLContext)>(Fn::eglDestroyContext)(
                m_display, m_context);
        m_host.function<EGLint (*)()>(Fn::eglGetError)();
    }
    ProbeContext(const ProbeContext&) = delete;
    ProbeContext& operator=(const ProbeContext&) = delete;

    bool isCurrent() const { return m_isCurrent; }

    std::string string(GLenum name) const
    {
        const auto* text = m_host.function<const GLubyte* (*)(GLenum)>(Fn::glGetString)(name);
        return text ? reinterpret_cast<const char*>(text) : "";
    }
    GLint integer(GLenum name) const
    {
        GLint value = 0;
        m_host.function<void (*)(GLenum, GLint*)>(Fn::glGetIntegerv)(name, &value);
        return value;
    }
    std::string extension(GLuint index) const
    {
        const auto* text =
            m_host.function<const GLubyte* (*)(GLenum, GLuint)>(Fn::glGetStringi)(gl::extensions, index);
        return text ? reinterpret_cast<const char*>(text) : "";
    }

private:
    Host& m_host;
    EGLDisplay m_display;
    ThreadState m_before;
    EGLContext m_context = EGL_NO_CONTEXT;
    bool m_isCurrent = false;
};

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
    const HostFacts& facts = hostFacts(host, display);
    records::reportNumber(static_cast<std::uint32_t>(facts.glExtensions.size()));
    for (std::uint32_t code = 1; code <= catalogue::hostExtensionCount; ++code)
        records::reportFlag(code, std::ranges::binary_search(facts.glExtensions, code));
    records::reportText("Desktop OpenGL", facts.glVersion != 0);
    reportEs(host, display);
    reportEgl(host, display);
    if (!facts.glVersionText.empty())
        records::reportOtherKeyedText(1, "OpenGL " + facts.glVersionText);
    reportSystem();
    records::reportComplete();
}

} // namespace layer
