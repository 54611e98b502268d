#include "HostDisplay.h"

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include <dlfcn.h>

namespace host_query {

namespace {

std::string number(unsigned int value)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (; value != 0; value >>= 4U)
        text.insert(text.begin(), digits[value & 15U]);
    return "0x" + text;
}

bool hasWindowSystem()
{
    for (const char* variable : {"WAYLAND_DISPLAY", "DISPLAY"}) {
        if (const char* value = std::getenv(variable); value && *value != '\0')
            return true;
    }
    return false;
}

EGLint renderableBit(int version)
{
    if (version < 20)
        return EGL_OPENGL_ES_BIT;
    return version < 30 ? EGL_OPENGL_ES2_BIT : EGL_OPENGL_ES3_BIT;
}

} // namespace

HostDisplay::HostDisplay()
    : m_library(dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL))
{
    if (!m_library)
        throw std::runtime_error("there is no EGL: " + std::string(dlerror()));
    const auto getDisplay = egl<decltype(&::eglGetDisplay)>("eglGetDisplay");
    const bool isFound = (hasWindowSystem() && initialize(getDisplay(EGL_DEFAULT_DISPLAY)))
        || initialize(surfaceless()) || initialize(getDisplay(EGL_DEFAULT_DISPLAY));
    if (!isFound)
        throw std::runtime_error("no EGL display can be initialized");
}

void* HostDisplay::eglAddress(const char* name) const
{
    void* address = dlsym(m_library, name);
    if (!address)
        throw std::runtime_error("EGL lacks " + std::string(name));
    return address;
}

void* HostDisplay::glAddress(const char* name) const
{
    if (void* address = m_glLibrary ? dlsym(m_glLibrary, name) : nullptr)
        return address;
    return reinterpret_cast<void*>(egl<decltype(&::eglGetProcAddress)>("eglGetProcAddress")(name));
}

bool HostDisplay::initialize(EGLDisplay display)
{
    if (display == EGL_NO_DISPLAY
        || egl<decltype(&::eglInitialize)>("eglInitialize")(display, nullptr, nullptr) == EGL_FALSE)
        return false;
    m_display = display;
    return true;
}

EGLDisplay HostDisplay::surfaceless() const
{
    const auto query = egl<decltype(&::eglQueryString)>("eglQueryString");
    const char* extensions = query(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (!extensions
        || std::string_view(extensions).find("EGL_MESA_platform_surfaceless") == std::string_view::npos)
        return EGL_NO_DISPLAY;
    const auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        egl<decltype(&::eglGetProcAddress)>("eglGetProcAddress")("eglGetPlatformDisplayEXT"));
    return getDisplay ? getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)
                      : EGL_NO_DISPLAY;
}

void HostDisplay::makeCurrent(int version)
{
    m_glLibrary = dlopen(version < 20 ? "libGLESv1_CM.so.1" : "libGLESv2.so.2", RTLD_NOW | RTLD_LOCAL);
    const auto error = egl<decltype(&::eglGetError)>("eglGetError");
    const auto fail = [&](const char* what) {
        throw std::runtime_error(
            std::string(what) + " (EGL error " + number(static_cast<unsigned int>(error())) + ")");
    };
    const std::array<EGLint, 5> wanted{
        EGL_RENDERABLE_TYPE, renderableBit(version), EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    const auto choose = egl<decltype(&::eglChooseConfig)>("eglChooseConfig");
    // Displays of Wayland have no pbuffers.
    const std::array<EGLint, 5> anySurface{wanted[0], wanted[1], EGL_SURFACE_TYPE, 0, EGL_NONE};
    choose(m_display, wanted.data(), &config, 1, &count);
    const bool hasPbuffer = count > 0;
    if (!hasPbuffer)
        choose(m_display, anySurface.data(), &config, 1, &count);
    if (count < 1)
        throw std::runtime_error("no config is made for it");
    egl<decltype(&::eglBindAPI)>("eglBindAPI")(EGL_OPENGL_ES_API);
    const std::array<EGLint, 5> attributes{
        EGL_CONTEXT_MAJOR_VERSION, version / 10, EGL_CONTEXT_MINOR_VERSION, version % 10, EGL_NONE};
    const EGLContext context = egl<decltype(&::eglCreateContext)>("eglCreateContext")(
        m_display, config, EGL_NO_CONTEXT, attributes.data());
    if (context == EGL_NO_CONTEXT)
        fail("the driver makes no such context");
    EGLSurface surface = EGL_NO_SURFACE;
    if (hasPbuffer) {
        const std::array<EGLint, 5> size{EGL_WIDTH, 16, EGL_HEIGHT, 16, EGL_NONE};
        surface = egl<decltype(&::eglCreatePbufferSurface)>("eglCreatePbufferSurface")(
            m_display, config, size.data());
    }
    if (egl<decltype(&::eglMakeCurrent)>("eglMakeCurrent")(m_display, surface, surface, context) == EGL_FALSE)
        fail("its context cannot be made current");
}

std::string HostDisplay::text(EGLint name) const
{
    const char* answer = egl<decltype(&::eglQueryString)>("eglQueryString")(m_display, name);
    return answer ? answer : "";
}

} // namespace host_query
