// Times calls of OpenGL ES: gles-calls [times] [errors]. Prints nanoseconds a call of a cheap one that is
// right, and of one that makes an error. bench-layer runs it with and without the layer.
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl32.h>

namespace {

template <typename Call> double nanosecondsOf(long times, Call call)
{
    const auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < times; ++i)
        call(i);
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count()
        / static_cast<double>(times);
}

bool start()
{
    const EGLDisplay display =
        eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    const std::array<EGLint, 3> attributes{EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
    if (!eglInitialize(display, nullptr, nullptr))
        return false;
    const EGLContext context =
        eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes.data());
    return eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE;
}

} // namespace

int main(int argumentCount, char* arguments[])
{
    const long times = argumentCount > 1 ? std::atol(arguments[1]) : 10'000'000;
    const long errors = argumentCount > 2 ? std::atol(arguments[2]) : 100'000;
    if (!start()) {
        std::puts("there is no OpenGL ES here");
        return 77;
    }
    // The first calls find functions and fill caches.
    nanosecondsOf(1000, [](long i) { glDepthFunc(i % 2 ? GL_LESS : GL_LEQUAL); });
    const double right = nanosecondsOf(times, [](long i) { glDepthFunc(i % 2 ? GL_LESS : GL_LEQUAL); });
    const double same = nanosecondsOf(times, [](long) { glDepthFunc(GL_LESS); });
    // Each error with a number of its own, so that whoever receives them can tell which.
    const double wrong = nanosecondsOf(errors, [](long i) {
        glEnable(static_cast<GLenum>(0x1000001 + i));
        glGetError();
    });
    std::printf("%.2f %.2f %.1f\n", same, right, wrong);
    return 0;
}
