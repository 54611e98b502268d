#include "ProfileDataWrapper.h"

#include "ProfileData.h"
#include "ProfileReader.h"

using WrapperPointer = std::shared_ptr<ProfileDataWrapper>;

ProfileDataWrapper::ProfileDataWrapper(std::shared_ptr<ProfileData> data, bool writable)
    : m_data(std::move(data))
    , m_writable(writable)
{
}

WrapperPointer ProfileDataWrapper::fromFile(const std::string& path, bool writable)
{
    auto data = std::make_shared<ProfileData>(readProfileFile(path));
    return WrapperPointer(new ProfileDataWrapper(std::move(data), writable));
}

WrapperPointer ProfileDataWrapper::fromText(std::string_view xml, bool writable)
{
    auto data = std::make_shared<ProfileData>(readProfile(xml));
    return WrapperPointer(new ProfileDataWrapper(std::move(data), writable));
}

WrapperPointer ProfileDataWrapper::copyOf(const ProfileDataWrapper& original)
{
    auto data = std::make_shared<ProfileData>(original.data());
    return WrapperPointer(new ProfileDataWrapper(std::move(data), true));
}

std::shared_ptr<ProfileData> ProfileDataWrapper::edit() const
{
    if (!m_writable)
        throw std::runtime_error("Tried to edit a read-only profile: '" + m_data->displayName() + "'");
    return m_data;
}

std::string ProfileDataWrapper::key() const
{
    return m_writable ? m_data->fileName() : m_data->displayName();
}
