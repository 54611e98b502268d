#include "LayerSetup.h"

#include "DeviceOfProfile.h"
#include "HostVendors.h"
#include "PrivateFolder.h"
#include "Utf8.h"

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace launcher {

namespace {

constexpr const char* deviceVariable = "CORVALE_LAYER_DEVICE";
constexpr const char* deviceFile = "device";

/// The folder of the layer's libraries, beside the folder of this program.
fs::path layerFolder()
{
    if (const char* folder = std::getenv("CORVALE_LAYER_DIR"); folder && *folder != '\0')
        return fs::absolute(folder);
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return program.parent_path().parent_path() / "lib" / "corvale";
}

std::string layerOptions(const Options& options, bool isStrict)
{
    std::string words = options.noErrors ? "no-errors" : "";
    if (isStrict)
        words += words.empty() ? "strict" : " strict";
    return words;
}

void setUnlessSet(Changes& changes, const char* variable, const char* value)
{
    if (!std::getenv(variable))
        changes[variable] = value;
}

/// Puts the library in front of what is preloaded anyway.
std::variant<Changes, Unwatchable> withPreload(Changes changes, const std::string& library)
{
    // Both separate the entries of the list, and cannot be quoted.
    if (library.find_first_of(" :") != std::string::npos)
        return Unwatchable{"a path with blanks or colons cannot be preloaded: " + library};
    const char* others = std::getenv("LD_PRELOAD");
    changes["LD_PRELOAD"] = library + (others && *others != '\0' ? std::string(":") + others : "");
    return changes;
}

std::variant<Changes, Unwatchable> withVendor(
    Changes changes, const std::string& library, const PrivateFolder& folder)
{
    if (!platform::isUtf8(library))
        return Unwatchable{"a path that is not UTF-8 cannot be told to libglvnd: " + library};
    const std::vector<std::string> vendors = hostVendors(library);
    if (vendors.empty())
        return Unwatchable{"libglvnd has no EGL library on this system (--via preload needs none)"};
    std::string list;
    for (const std::string& vendor : vendors)
        list += (list.empty() ? "" : ":") + vendor;
    const std::string name = "egl_vendor.json";
    if (!folder.write(name, vendorFile(library)))
        return Unwatchable{"a file cannot be written in " + folder.path()};
    changes["CORVALE_LAYER_HOST"] = list;
    changes["__EGL_VENDOR_LIBRARY_FILENAMES"] = folder.path() + "/" + name;
    return changes;
}

} // namespace

std::variant<Changes, Unwatchable> layerSetup(
    const Options& options, bool isStrict, const Device* device, const PrivateFolder& folder)
{
    if (folder.path().empty())
        return Unwatchable{"a private folder can be made neither in XDG_RUNTIME_DIR nor in TMPDIR or /tmp"};
    const fs::path library =
        layerFolder() / (options.via == Via::Preload ? "libcorvale_preload.so" : "libEGL_corvale.so");
    std::error_code error;
    if (!fs::is_regular_file(library, error))
        return Unwatchable{"there is no " + library.string()};
    Changes changes;
    changes["CORVALE_LAYER_SOCKET"] = folder.socketPath();
    changes["CORVALE_LAYER_OPTIONS"] = layerOptions(options, isStrict);
    // Also without one: this launcher may be run by another one.
    changes[deviceVariable].clear();
    if (device) {
        if (!folder.write(deviceFile, toText(device->table)))
            return Unwatchable{"a file cannot be written in " + folder.path()};
        changes[deviceVariable] = folder.path() + "/" + deviceFile;
    }
    // Both would make their OpenGL ES contexts through GLX on X11.
    setUnlessSet(changes, "SDL_VIDEO_X11_FORCE_EGL", "1");
    setUnlessSet(changes, "QT_XCB_GL_INTEGRATION", "xcb_egl");
    if (options.via == Via::Preload)
        return withPreload(std::move(changes), library.string());
    return withVendor(std::move(changes), library.string(), folder);
}

} // namespace launcher
