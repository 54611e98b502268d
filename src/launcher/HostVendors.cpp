#include "HostVendors.h"

#include "GuardedFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace launcher {

namespace {

constexpr std::size_t fileLimit = 64U << 10U; // bytes
constexpr const char* standardFolders = "/etc/glvnd/egl_vendor.d:/usr/share/glvnd/egl_vendor.d";

std::vector<std::string> split(std::string_view list)
{
    std::vector<std::string> parts;
    while (!list.empty()) {
        const std::size_t end = list.find(':');
        if (end != 0)
            parts.emplace_back(list.substr(0, end));
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    }
    return parts;
}

const char* valueOf(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && *value != '\0' ? value : nullptr;
}

std::vector<std::string> vendorFiles()
{
    if (const char* files = valueOf("__EGL_VENDOR_LIBRARY_FILENAMES"))
        return split(files);
    const char* folders = valueOf("__EGL_VENDOR_LIBRARY_DIRS");
    std::vector<std::string> files;
    for (const std::string& folder : split(folders ? folders : standardFolders)) {
        std::vector<std::string> ofFolder;
        std::error_code error;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
            if (entry.path().extension() == ".json")
                ofFolder.push_back(entry.path().string());
        }
        std::sort(ofFolder.begin(), ofFolder.end());
        files.insert(files.end(), ofFolder.begin(), ofFolder.end());
    }
    return files;
}

/// The library that a vendor's file names; empty where libglvnd would pass over the file.
std::string libraryOf(const std::string& file)
{
    const platform::FileBytes content = platform::readFile(file, fileLimit);
    const auto json = nlohmann::json::parse(content.bytes, nullptr, false);
    const auto text = [](const nlohmann::json& object, const char* key) {
        const auto found = object.is_object() ? object.find(key) : object.end();
        return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
    };
    if (!json.is_object() || !text(json, "file_format_version").starts_with("1.") || !json.contains("ICD"))
        return {};
    return text(json["ICD"], "library_path");
}

/// Whether two names lead to one file. A name without a folder is looked for where the loader would.
bool isSameFile(const std::string& library, const std::string& other)
{
    struct stat wanted { };
    if (stat(other.c_str(), &wanted) != 0)
        return false;
    std::vector<std::string> candidates{library};
    if (library.find('/') == std::string::npos) {
        const char* folders = valueOf("LD_LIBRARY_PATH");
        candidates = split(folders ? folders : "");
        for (const char* folder : {"/usr/local/lib", "/usr/lib", "/usr/lib64"})
            candidates.emplace_back(folder);
        for (std::string& candidate : candidates)
            candidate += "/" + library;
    }
    return std::any_of(candidates.begin(), candidates.end(), [&](const std::string& candidate) {
        struct stat status { };
        return stat(candidate.c_str(), &status) == 0 && status.st_dev == wanted.st_dev
            && status.st_ino == wanted.st_ino;
    });
}

} // namespace

std::vector<std::string> hostVendors(const std::string& layerLibrary)
{
    std::vector<std::string> vendors;
    bool foundLayer = false;
    for (const std::string& file : vendorFiles()) {
        const std::string library = libraryOf(file);
        // The list's separator cannot stand in a path.
        if (library.empty() || library.find(':') != std::string::npos)
            continue;
        if (isSameFile(library, layerLibrary))
            foundLayer = true;
        else
            vendors.push_back(library);
    }
    // A launcher that is run by another one finds only the layer, and the host's in what the other one left.
    const char* ofOuterLauncher = valueOf("CORVALE_LAYER_HOST");
    if (vendors.empty() && foundLayer && ofOuterLauncher)
        return split(ofOuterLauncher);
    return vendors;
}

std::string vendorFile(const std::string& library)
{
    const nlohmann::ordered_json json{{"file_format_version", "1.0.0"}, {"ICD", {{"library_path", library}}}};
    return json.dump(4) + "\n";
}

} // namespace launcher
