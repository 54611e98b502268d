#pragma once

#include <string>

#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace host_query {

/// A display of this machine's EGL: that of the window system where there is one, else one without windows.
/// What it has loaded stays, since drivers do not like to be unloaded.
class HostDisplay {
public:
    /// Throws std::runtime_error where there is none.
    HostDisplay();

    EGLDisplay display() const { return m_display; }

    /// A function of EGL. Throws std::runtime_error for one that is missing.
    template <typename Pointer> Pointer egl(const char* name) const
    {
        return reinterpret_cast<Pointer>(eglAddress(name));
    }
    /// Makes a context of a version current, 11 for 1.1. Throws std::runtime_error where there is none.
    void makeCurrent(int version);
    /// A function of OpenGL ES for the current context; null for one that is missing.
    template <typename Pointer> Pointer gl(const char* name) const
    {
        return reinterpret_cast<Pointer>(glAddress(name));
    }
    /// An answer of eglQueryString(), empty where there is none.
    std::string text(EGLint name) const;

private:
    void* eglAddress(const char* name) const;
    void* glAddress(const char* name) const;
    bool initialize(EGLDisplay display);
    EGLDisplay surfaceless() const;

    void* m_library = nullptr;
    void* m_glLibrary = nullptr;
    EGLDisplay m_display = EGL_NO_DISPLAY;
};

} // namespace host_query
