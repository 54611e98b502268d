// The entry of an EGL vendor library, as glvnd's libEGL calls it (glvnd/libeglabi.h). It loads the machine's
// own vendor libraries and hands on what they offer, with the layer's wrappers in place of their functions.
#include "Device.h"
#include "Host.h"
#include "Process.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <glvnd/libeglabi.h>

namespace {

using layer::Host;

struct Vendor {
    void* library = nullptr; ///< Of the loader.
    __EGLapiImports imports{};
    Host* host = nullptr;
};

constexpr std::size_t vendorLimit = 4;
std::array<Vendor, vendorLimit> vendors;
std::size_t vendorCount = 0;

/// How a host asks its own vendor; a plain function for each, since the vendors' have no parameter to tell
/// them apart.
template <std::size_t Index> void* resolve(const char* name)
{
    return vendors[Index].imports.getProcAddress(name);
}
constexpr std::array<Host::Resolver, vendorLimit> resolvers{
    &resolve<0>, &resolve<1>, &resolve<2>, &resolve<3>};

/// The place of a library: the one that it has, since a program may unload libEGL and load it again, or a
/// free one. Null where there is none.
Vendor* placeOf(void* library)
{
    auto* const end = vendors.begin() + vendorCount;
    auto* const found =
        std::find_if(vendors.begin(), end, [=](const Vendor& vendor) { return vendor.library == library; });
    return found == vendors.end() ? nullptr : found;
}

bool load(
    const std::string& library, std::uint32_t version, const __EGLapiExports* exports, __EGLvendorInfo* info)
{
    void* handle = dlopen(library.c_str(), RTLD_LAZY);
    auto* main = handle ? reinterpret_cast<__PFNEGLMAINPROC>(dlsym(handle, __EGL_MAIN_PROTO_NAME)) : nullptr;
    Vendor* vendor = main ? placeOf(handle) : nullptr;
    __EGLapiImports imports{};
    if (!vendor || !main(version, exports, info, &imports) || !imports.getProcAddress) {
        // The program may well go on with another driver.
        if (handle)
            dlclose(handle);
        return false;
    }
    vendor->imports = imports;
    if (vendor->host) {
        dlclose(handle);
        return true;
    }
    vendor->library = handle;
    vendor->host = layer::addHost(resolvers[vendorCount]);
    ++vendorCount;
    return true;
}

EGLDisplay getPlatformDisplay(EGLenum platform, void* native, const EGLAttrib* attributes)
{
    for (std::size_t i = 0; i < vendorCount; ++i) {
        const EGLDisplay display = vendors[i].imports.getPlatformDisplay(platform, native, attributes);
        if (display != EGL_NO_DISPLAY) {
            layer::setHostOf(display, *vendors[i].host);
            return display;
        }
    }
    return EGL_NO_DISPLAY;
}

EGLBoolean getSupportsApi(EGLenum api)
{
    if (api != EGL_OPENGL_ES_API && layer::emulatedDevice())
        return EGL_FALSE;
    for (std::size_t i = 0; i < vendorCount; ++i) {
        if (vendors[i].imports.getSupportsAPI(api))
            return EGL_TRUE;
    }
    return EGL_FALSE;
}

const char* getVendorString(int name)
{
    for (std::size_t i = 0; i < vendorCount; ++i) {
        const char* text =
            vendors[i].imports.getVendorString ? vendors[i].imports.getVendorString(name) : nullptr;
        if (text)
            return text;
    }
    return nullptr;
}

/// libEGL asks for all that it knows as soon as a context is current, so the host is not asked here. Names of
/// the registry have a wrapper, which does nothing where the host's function is missing, as the function of
/// libEGL would. Those of EGL tell by their absence which extensions there are.
void* getProcAddress(const char* name)
{
    void* wrapper = layer::wrapperOf(name);
    if (wrapper && !std::string_view(name).starts_with("egl"))
        return wrapper;
    for (std::size_t i = 0; i < vendorCount; ++i) {
        if (void* address = vendors[i].imports.getProcAddress(name))
            return wrapper ? wrapper : address;
    }
    return nullptr;
}

void* getDispatchAddress(const char* name)
{
    for (std::size_t i = 0; i < vendorCount; ++i) {
        if (void* address = vendors[i].imports.getDispatchAddress(name))
            return address;
    }
    return nullptr;
}

void setDispatchIndex(const char* name, int index)
{
    for (std::size_t i = 0; i < vendorCount; ++i)
        vendors[i].imports.setDispatchIndex(name, index);
}

EGLenum findNativeDisplayPlatform(void* native)
{
    for (std::size_t i = 0; i < vendorCount; ++i) {
        const auto find = vendors[i].imports.findNativeDisplayPlatform;
        const EGLenum platform = find ? find(native) : EGLenum{EGL_NONE};
        if (platform != EGL_NONE)
            return platform;
    }
    return EGL_NONE;
}

void patchThreadAttach()
{
    for (std::size_t i = 0; i < vendorCount; ++i) {
        if (vendors[i].imports.patchThreadAttach)
            vendors[i].imports.patchThreadAttach();
    }
}

} // namespace

layer::Host::Resolver layer::firstResolver()
{
    return nullptr;
}

extern "C" [[gnu::visibility("default")]] EGLBoolean __egl_Main(
    std::uint32_t version, const __EGLapiExports* exports, __EGLvendorInfo* vendor, __EGLapiImports* imports)
{
    layer::setVia(layer::Via::VendorLibrary);
    bool isAnyLoaded = false;
    for (const std::string& library : layer::options().hostLibraries)
        isAnyLoaded = load(library, version, exports, vendor) || isAnyLoaded;
    if (!isAnyLoaded)
        return EGL_FALSE;
    *imports = {};
    imports->getPlatformDisplay = &getPlatformDisplay;
    imports->getSupportsAPI = &getSupportsApi;
    imports->getVendorString = &getVendorString;
    imports->getProcAddress = &getProcAddress;
    imports->getDispatchAddress = &getDispatchAddress;
    imports->setDispatchIndex = &setDispatchIndex;
    imports->patchThreadAttach = &patchThreadAttach;
    imports->findNativeDisplayPlatform = &findNativeDisplayPlatform;
    // Patching libEGL's entry points would lead calls past the wrappers, so it is not offered.
    return EGL_TRUE;
}
