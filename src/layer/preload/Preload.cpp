// For machines without glvnd: a preloaded library that offers every function of EGL and OpenGL under its own
// name, and catches those who ask the loader for them by name.
#include "Host.h"
#include "Process.h"

#include <array>
#include <string_view>

#include <dlfcn.h>

namespace {

using Dlsym = void* (*)(void*, const char*);

/// The loader's own, which this library's hides. Its version is that of the C library's first release on a
/// machine.
Dlsym loaderDlsym()
{
    static const Dlsym found = [] {
        for (const char* version : {"GLIBC_2.34", "GLIBC_2.2.5", "GLIBC_2.17"}) {
            if (void* address = dlvsym(RTLD_NEXT, "dlsym", version))
                return reinterpret_cast<Dlsym>(address);
        }
        return Dlsym{nullptr};
    }();
    return found;
}

/// Libraries that a program opens by itself are not in the order that RTLD_NEXT goes through. They stay when
/// the program closes them, since the layer goes on calling what it has found.
void* findInOpened(const char* name)
{
    for (const char* library : {"libEGL.so.1", "libGLESv2.so.2", "libGLESv1_CM.so.1", "libGL.so.1"}) {
        void* handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
        void* address = handle ? loaderDlsym()(handle, name) : nullptr;
        if (handle)
            dlclose(handle);
        if (address)
            return address;
    }
    return nullptr;
}

void* findExported(const char* name)
{
    void* address = loaderDlsym() ? loaderDlsym()(RTLD_NEXT, name) : nullptr;
    return address || !loaderDlsym() ? address : findInOpened(name);
}

void* resolve(const char* name)
{
    if (void* address = findExported(name))
        return address;
    using GetProcAddress = void* (*)(const char*);
    static const auto ask = reinterpret_cast<GetProcAddress>(findExported("eglGetProcAddress"));
    return ask ? ask(name) : nullptr;
}

} // namespace

layer::Host::Resolver layer::firstResolver()
{
    layer::setVia(layer::Via::Preload);
    return &resolve;
}

/// What a library that was opened by itself has under a name, or the wrapper that stands in front of it.
static void* findIn(void* handle, const char* name)
{
    void* found = loaderDlsym()(handle, name);
    const std::string_view wanted(name);
    const bool isOurs = wanted.starts_with("gl") || wanted.starts_with("egl");
    void* wrapper = found && isOurs ? layer::wrapperOf(wanted) : nullptr;
    return wrapper ? wrapper : found;
}

// GCC makes a jump of a last call only where it optimizes, which a build for debugging does not.
#ifdef __clang__
#define CORVALE_JUMPS
#else
#define CORVALE_JUMPS [[gnu::optimize("O2")]]
#endif

/// For the handles that stand for a search, the loader looks who calls it, so it is jumped to. The wrappers
/// are found in such a search by themselves, under their own names.
extern "C" [[gnu::visibility("default")]] CORVALE_JUMPS void* dlsym(void* handle, const char* name)
{
    const Dlsym loader = loaderDlsym();
    if (!loader)
        return nullptr;
    return handle == RTLD_NEXT || handle == RTLD_DEFAULT ? loader(handle, name) : findIn(handle, name);
}
