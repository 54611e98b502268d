#pragma once

#include "FileReplacement.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace tinyxml2 {
class XMLDocument;
class XMLElement; // NOLINT(cppcoreguidelines-virtual-class-destructor): theirs to decide
} // namespace tinyxml2

/// Makes one profile document of one or more files. The first file with a profile gives everything; of those
/// behind it, API sections are taken and nothing else.
class ProfileImport {
public:
    ProfileImport();
    ~ProfileImport();
    ProfileImport(const ProfileImport&) = delete;
    ProfileImport& operator=(const ProfileImport&) = delete;

    /// Merges a file in. Returns why it was left out as readable text, empty when it could be read.
    std::string add(const std::filesystem::path& file);

    /// Whether there is a profile with an API section and an EGL section behind it.
    bool isProfile() const;

    /// The result as a file holds it; cut off somewhere behind the largest size of a file.
    std::string toXml() const;

    /// Writes the result as a whole or not at all; one that could not be read again is not written.
    platform::FileResult save(const std::filesystem::path& target) const;

private:
    std::string merge(std::string_view bytes);
    void takeApis(const tinyxml2::XMLElement& from, tinyxml2::XMLElement& into);

    std::unique_ptr<tinyxml2::XMLDocument> m_result;
    /// Of all files that were read.
    std::size_t m_bytes = 0;
    bool m_tooLarge = false;
};
