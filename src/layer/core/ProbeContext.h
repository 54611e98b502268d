#pragma once

#include "Host.h"

#include <string>

namespace layer {

/// Puts the thread back as it was: what is current, and the API that is bound.
class ThreadState {
public:
    explicit ThreadState(Host& host);
    void restore(EGLDisplay probed);

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
    ProbeContext(Host& host, EGLDisplay display, EGLenum api, EGLint renderable, const EGLint* attributes);
    ~ProbeContext();
    ProbeContext(const ProbeContext&) = delete;
    ProbeContext& operator=(const ProbeContext&) = delete;

    bool isCurrent() const { return m_isCurrent; }

    std::string string(GLenum name) const;
    GLint integer(GLenum name) const;
    std::string extension(GLuint index) const;

private:
    Host& m_host;
    EGLDisplay m_display;
    ThreadState m_before;
    EGLContext m_context = EGL_NO_CONTEXT;
    bool m_isCurrent = false;
};

} // namespace layer
