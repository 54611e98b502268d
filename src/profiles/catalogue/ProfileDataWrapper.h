#pragma once

#include <memory>
#include <string>
#include <string_view>

class ProfileData;

/// A profile of the catalogue and whether it may be edited. Always held by shared ownership; who merely looks
/// at a profile holds a std::weak_ptr<const ProfileDataWrapper>.
class ProfileDataWrapper {
public:
    /// Both throw ProfileError when the profile cannot be loaded.
    static std::shared_ptr<ProfileDataWrapper> fromFile(const std::string& path, bool writable);
    static std::shared_ptr<ProfileDataWrapper> fromText(std::string_view xml, bool writable);

    /// A writable copy with data of its own.
    static std::shared_ptr<ProfileDataWrapper> copyOf(const ProfileDataWrapper& original);

    ProfileDataWrapper(const ProfileDataWrapper&) = delete;
    ProfileDataWrapper& operator=(const ProfileDataWrapper&) = delete;

    bool isWritable() const { return m_writable; }
    const ProfileData& data() const { return *m_data; }

    /// The data for editing. Throws std::runtime_error when the profile is read-only.
    std::shared_ptr<ProfileData> edit() const;

    /// The name under which the profile is found and remembered: its file name when it is writable, else its
    /// display name; throws as ProfileData::displayName() does.
    std::string key() const;

private:
    ProfileDataWrapper(std::shared_ptr<ProfileData> data, bool writable);

    std::shared_ptr<ProfileData> m_data;
    bool m_writable;
};
