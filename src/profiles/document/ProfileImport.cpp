#include "ProfileImport.h"

#include "GuardedFile.h"
#include "Limits.h"
#include "Numbers.h"
#include "ProfileData.h"
#include "ProfileReader.h"
#include "Utf8.h"
#include "XmlText.h"

#include <tinyxml2.h>

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

namespace {

/// The number of an API section; 0 where there is none.
std::int64_t versionOf(const XMLElement& api)
{
    const char* text = api.Attribute("version");
    return text ? platform::parseInteger(text).value_or(0) : 0;
}

std::string tooLargeText()
{
    return "the files together are larger than " + std::to_string(platform::limits::fileSize) + " bytes";
}

} // namespace

ProfileImport::ProfileImport()
    : m_result(std::make_unique<XMLDocument>(true, tinyxml2::PRESERVE_WHITESPACE))
{
}

ProfileImport::~ProfileImport() = default;

std::string ProfileImport::add(const std::filesystem::path& file)
{
    if (m_tooLarge)
        return tooLargeText();
    const platform::FileBytes read = platform::readFile(file, platform::limits::fileSize);
    if (!read.ok)
        return read.reason;
    std::string reason = merge(read.bytes);
    // Printing takes time, so it is only done where the answer is open.
    m_bytes += read.bytes.size();
    m_tooLarge = m_bytes > platform::limits::fileSize && toXml().size() > platform::limits::fileSize;
    return reason;
}

std::string ProfileImport::merge(std::string_view bytes)
{
    if (!platform::isUtf8(bytes))
        return "it is not UTF-8 text";
    XMLDocument loaded(true, tinyxml2::PRESERVE_WHITESPACE);
    std::string reason = platform::parseXml(loaded, bytes);
    if (!reason.empty())
        return reason;
    XMLElement* into = m_result->FirstChildElement("profile");
    const XMLElement* from = loaded.FirstChildElement("profile");
    // A file that begins with something else, a comment for example, gives that alone.
    if (!into && loaded.FirstChild())
        m_result->InsertEndChild(loaded.FirstChild()->DeepClone(m_result.get()));
    else if (into && from)
        takeApis(*from, *into);
    return {};
}

void ProfileImport::takeApis(const XMLElement& from, XMLElement& into)
{
    for (const XMLElement* api = from.FirstChildElement("es"); api; api = api->NextSiblingElement("es")) {
        // Only the first section decides: those behind it may come to be there twice, and a reader unites
        // them.
        const XMLElement* first = into.FirstChildElement("es");
        if (!first || versionOf(*first) != versionOf(*api))
            into.InsertEndChild(api->DeepClone(m_result.get()));
    }
}

bool ProfileImport::isProfile() const
{
    const XMLElement* profile = m_result->FirstChildElement("profile");
    const XMLElement* api = profile ? profile->FirstChildElement("es") : nullptr;
    return api && api->NextSiblingElement("egl");
}

std::string ProfileImport::toXml() const
{
    return platform::printXml(*m_result, platform::XmlLayout::IndentedAroundText, platform::limits::fileSize);
}

platform::FileResult ProfileImport::save(const std::filesystem::path& target) const
{
    const std::string xml = toXml();
    if (m_tooLarge || xml.size() > platform::limits::fileSize)
        return {tooLargeText()};
    try {
        readProfile(xml);
    } catch (const ProfileError& error) {
        return {"the result could not be read again: " + error.reason()};
    }
    return platform::replaceFile(target, xml);
}
