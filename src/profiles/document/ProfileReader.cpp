#include "ProfileReader.h"

#include "GuardedFile.h"
#include "Limits.h"
#include "ProfileElements.h"
#include "ProfileWriter.h"
#include "Utf8.h"
#include "XmlText.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include <tinyxml2.h>

using platform::textOf;
using profile_elements::ElementNumbers;
using profile_elements::number;
using profile_elements::readNode;
using tinyxml2::XMLAttribute;
using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLText;

namespace {

/// Character references can name halves of surrogate pairs, which no text may hold.
class EncodingCheck : public tinyxml2::XMLVisitor {
public:
    bool VisitEnter(const XMLElement& /*element*/, const XMLAttribute* attribute) override
    {
        for (; attribute && m_good; attribute = attribute->Next())
            m_good = platform::isUtf8(attribute->Value());
        return m_good;
    }
    bool Visit(const XMLText& text) override
    {
        m_good = m_good && platform::isUtf8(text.Value());
        return m_good;
    }
    bool isGood() const { return m_good; }

private:
    bool m_good = true;
};

std::string textOfChild(const XMLElement& parent, const char* name)
{
    const XMLElement* child = parent.FirstChildElement(name);
    return child ? textOf(*child) : std::string();
}

void readApi(ProfileData& profile, const XMLElement& api, int version)
{
    std::vector<std::string>& extensions = profile.extensions()[version];
    for (const XMLElement* child = api.FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (child->Name() == std::string_view("extension"))
            extensions.push_back(textOf(*child));
        else
            profile.capabilities()[version].push_back(readNode(*child));
    }
}

void readEgl(ProfileData& profile, const XMLElement& egl)
{
    for (const XMLElement* child = egl.FirstChildElement(); child; child = child->NextSiblingElement()) {
        const bool isConfig = child->Name() == std::string_view("config");
        const std::optional<int> id = isConfig ? number(*child, "id") : std::nullopt;
        for (const XMLElement* attribute = id ? child->FirstChildElement() : nullptr; attribute;
             attribute = attribute->NextSiblingElement())
            profile.configs()[*id].push_back(readNode(*attribute));
    }
}

void readRoot(ProfileData& profile, const XMLElement& root)
{
    profile.setDevice(textOfChild(root, "device"));
    profile.setRenderer(textOfChild(root, "renderer"));
    profile.setVendor(textOfChild(root, "vendor"));
    const XMLElement* egl = root.FirstChildElement("egl");
    if (egl)
        readEgl(profile, *egl);
    for (const XMLElement* child = root.FirstChildElement(); child; child = child->NextSiblingElement()) {
        const bool isApi = child->Name() == std::string_view("es");
        if (const std::optional<int> version = isApi ? number(*child, "version") : std::nullopt)
            readApi(profile, *child, *version);
    }
    for (auto& [version, names] : profile.extensions())
        std::sort(names.begin(), names.end());
}

/// Why the document cannot be read, as readable text; empty when it was read. After a failure the profile is
/// half-filled and good for nothing.
std::string read(ProfileData& profile, std::string_view document)
{
    if (!platform::isUtf8(document))
        return "it is not UTF-8 text";
    XMLDocument xml(true, tinyxml2::PRESERVE_WHITESPACE);
    std::string reason = platform::parseXml(xml, document);
    if (!reason.empty())
        return reason;
    EncodingCheck check;
    xml.Accept(&check);
    if (!check.isGood())
        return "it refers to a character that does not exist";
    XMLElement* root = xml.FirstChildElement("profile");
    if (!root)
        return "No <profile> element was found";
    const ElementNumbers numbers(*root);
    readRoot(profile, *root);
    profile.setSource(document);
    return {};
}

} // namespace

ProfileError::ProfileError(const std::string& what, const std::string& reason)
    : std::runtime_error(reason.empty() ? what : what + " (" + reason + ')')
    , m_reason(reason)
{
}

ProfileData readProfile(std::string_view xml)
{
    ProfileData profile;
    const std::string reason = read(profile, xml);
    if (!reason.empty())
        throw ProfileError("Failed to load profile data", reason);
    return profile;
}

ProfileData readWritten(const ProfileData& profile)
{
    ProfileData written = readProfile(writeProfile(profile));
    written.setFileName(profile.fileName());
    return written;
}

ProfileData readProfileFile(const std::string& path)
{
    ProfileData profile;
    profile.setFileName(std::filesystem::path(path).filename().string());
    const platform::FileBytes file = platform::readFile(path, platform::limits::fileSize);
    const std::string reason = file.ok ? read(profile, file.bytes) : file.reason;
    if (!file.ok || !reason.empty())
        throw ProfileError("Failed to load profile data from file: '" + path + "'", reason);
    return profile;
}
