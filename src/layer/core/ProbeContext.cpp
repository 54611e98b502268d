#include "ProbeContext.h"

namespace layer {

ThreadState::ThreadState(Host& host)
    : m_host(host)
    , m_api(host.function<EGLenum (*)()>(Fn::eglQueryAPI)())
    , m_display(host.function<EGLDisplay (*)()>(Fn::eglGetCurrentDisplay)())
    , m_context(host.function<EGLContext (*)()>(Fn::eglGetCurrentContext)())
    , m_draw(host.function<EGLSurface (*)(EGLint)>(Fn::eglGetCurrentSurface)(EGL_DRAW))
    , m_read(host.function<EGLSurface (*)(EGLint)>(Fn::eglGetCurrentSurface)(EGL_READ))
{
}

void ThreadState::restore(EGLDisplay probed)
{
    const auto makeCurrent = m_host.function<decltype(&::eglMakeCurrent)>(Fn::eglMakeCurrent);
    if (m_context != EGL_NO_CONTEXT)
        makeCurrent(m_display, m_draw, m_read, m_context);
    else
        makeCurrent(probed, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    m_host.function<EGLBoolean (*)(EGLenum)>(Fn::eglBindAPI)(m_api);
    m_host.function<EGLint (*)()>(Fn::eglGetError)();
}

ProbeContext::ProbeContext(
    Host& host, EGLDisplay display, EGLenum api, EGLint renderable, const EGLint* attributes)
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

ProbeContext::~ProbeContext()
{
    m_before.restore(m_display);
    if (m_context != EGL_NO_CONTEXT)
        m_host.function<EGLBoolean (*)(EGLDisplay, EGLContext)>(Fn::eglDestroyContext)(m_display, m_context);
    m_host.function<EGLint (*)()>(Fn::eglGetError)();
}
std::string ProbeContext::string(GLenum name) const
{
    const auto* text = m_host.function<const GLubyte* (*)(GLenum)>(Fn::glGetString)(name);
    return text ? reinterpret_cast<const char*>(text) : "";
}

GLint ProbeContext::integer(GLenum name) const
{
    GLint value = 0;
    m_host.function<void (*)(GLenum, GLint*)>(Fn::glGetIntegerv)(name, &value);
    return value;
}

std::string ProbeContext::extension(GLuint index) const
{
    const auto* text =
        m_host.function<const GLubyte* (*)(GLenum, GLuint)>(Fn::glGetStringi)(gl::extensions, index);
    return text ? reinterpret_cast<const char*>(text) : "";
}

} // namespace layer
