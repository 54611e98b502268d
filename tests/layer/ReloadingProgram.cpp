// A program that loads libEGL by itself and unloads it again, several times, as toolkits do between two
// windows.
#include <array>
#include <cstdio>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <dlfcn.h>
#include <sys/mman.h>

namespace {

/// An error of OpenGL ES as the program sees it; -1 where there is no OpenGL ES.
int errorOf(void* library)
{
    const auto get = [=]<typename Function>(Function*& function, const char* name) {
        function = reinterpret_cast<Function*>(dlsym(library, name));
    };
    decltype(&eglGetProcAddress) getProcAddress = nullptr;
    decltype(&eglGetPlatformDisplay) getDisplay = nullptr;
    decltype(&eglInitialize) initialize = nullptr;
    decltype(&eglCreateContext) createContext = nullptr;
    decltype(&eglMakeCurrent) makeCurrent = nullptr;
    decltype(&eglTerminate) terminate = nullptr;
    decltype(&eglReleaseThread) releaseThread = nullptr;
    get(getProcAddress, "eglGetProcAddress");
    get(getDisplay, "eglGetPlatformDisplay");
    get(initialize, "eglInitialize");
    get(createContext, "eglCreateContext");
    get(makeCurrent, "eglMakeCurrent");
    get(terminate, "eglTerminate");
    get(releaseThread, "eglReleaseThread");

    const EGLDisplay display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    constexpr std::array<EGLint, 3> version{EGL_CONTEXT_MAJOR_VERSION, 2, EGL_NONE};
    if (!initialize(display, nullptr, nullptr)
        || !makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE,
            createContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, version.data())))
        return -1;
    reinterpret_cast<void (*)(unsigned)>(getProcAddress("glEnable"))(0x1234);
    const int error = reinterpret_cast<int (*)()>(getProcAddress("glGetError"))();
    // The driver asks libEGL where functions of extensions go.
    const auto createSync = reinterpret_cast<PFNEGLCREATESYNCKHRPROC>(getProcAddress("eglCreateSyncKHR"));
    const auto destroySync = reinterpret_cast<PFNEGLDESTROYSYNCKHRPROC>(getProcAddress("eglDestroySyncKHR"));
    destroySync(display, createSync(display, EGL_SYNC_FENCE_KHR, nullptr));
    makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    terminate(display);
    releaseThread();
    return error;
}

} // namespace

int main()
{
    for (int round = 0; round < 6; ++round) {
        void* library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
        if (!library)
            return 77;
        std::printf("%#x\n", static_cast<unsigned>(errorOf(library)));
        std::fflush(stdout);
        dlclose(library);
        // What takes the place of the library makes the next one go elsewhere.
        constexpr std::size_t pageSize = 4096;
        for (const std::size_t pages : {8U, 32U})
            static_cast<void>(mmap(nullptr, pages * pageSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    }
    return 0;
}
