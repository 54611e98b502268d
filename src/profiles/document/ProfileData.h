#pragma once

#include "ProfileNode.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A hardware profile: one emulated device with its strings, its capabilities and extensions for each API
/// version, and its EGL configurations. docs/profile-format.md describes the documents.
///
/// All texts are UTF-8. Versions and ids are the numbers of the attributes `version` and `id`.
class ProfileData {
public:
    using Capabilities = std::map<int, std::vector<ProfileNode>>;
    using Extensions = std::map<int, std::vector<std::string>>;
    using Configs = std::map<int, std::vector<ProfileNode>>;

    /// The file's name without its folder; empty for a profile that was not read from a file.
    const std::string& fileName() const { return m_fileName; }
    void setFileName(const std::string& name) { m_fileName = name; }
    const std::string& device() const { return m_device; }
    void setDevice(const std::string& device) { m_device = device; }
    const std::string& renderer() const { return m_renderer; }
    void setRenderer(const std::string& renderer) { m_renderer = renderer; }
    const std::string& vendor() const { return m_vendor; }
    void setVendor(const std::string& vendor) { m_vendor = vendor; }

    /// What the user knows the profile by: the device, else "Generic " and the renderer, else the file name.
    /// Throws std::runtime_error when all three are empty.
    std::string displayName() const;

    /// What each API version reports, in the order of the document; extensions have a map of their own.
    const Capabilities& capabilities() const { return m_capabilities; }
    Capabilities& capabilities() { return m_capabilities; }

    /// The extensions of each API version, sorted by their bytes. Its keys are the API versions that the
    /// profile supports, even those without an extension.
    const Extensions& extensions() const { return m_extensions; }
    Extensions& extensions() { return m_extensions; }

    /// The attributes of each EGL config, in the order of the document.
    const Configs& configs() const { return m_configs; }
    Configs& configs() { return m_configs; }

    /// The document that the profile was read from, none for one that was made. A save keeps what it has
    /// beyond the above: comments, further attributes and elements.
    const std::shared_ptr<const std::string>& source() const { return m_source; }
    void setSource(std::string_view document) { m_source = std::make_shared<const std::string>(document); }

    /// Compares what is saved, so not the file name.
    bool operator==(const ProfileData& other) const;

private:
    std::string m_fileName;
    std::string m_device;
    std::string m_renderer;
    std::string m_vendor;
    Capabilities m_capabilities;
    Extensions m_extensions;
    Configs m_configs;
    std::shared_ptr<const std::string> m_source;
};
