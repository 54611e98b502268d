#include "ProfileData.h"

#include "ProfileWriter.h"

#include <stdexcept>
#include <tuple>

std::string ProfileData::displayName() const
{
    if (!m_device.empty())
        return m_device;
    if (!m_renderer.empty())
        return "Generic " + m_renderer;
    if (!m_fileName.empty())
        return m_fileName;
    throw std::runtime_error("Profile has no name");
}

bool ProfileData::operator==(const ProfileData& other) const
{
    const auto saved = [](const ProfileData& profile) {
        return std::tie(profile.m_device, profile.m_renderer, profile.m_vendor, profile.m_capabilities,
            profile.m_extensions, profile.m_configs);
    };
    if (saved(*this) != saved(other))
        return false;
    return m_source == other.m_source || writeProfile(*this) == writeProfile(other);
}
