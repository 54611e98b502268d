#pragma once

#include <string>

class ProfileData;
class QWidget;

/// Saving with its dialogs. They belong to the active window, or to `parent` where no window is active.
namespace profile_saving {

/// Saves under the profile's file name and asks for one when it has none. False when the user gave none, in
/// which case nothing is written, or when it failed, which a message box has said then.
bool save(ProfileData& profile, const std::string& directory, QWidget* parent = nullptr);

/// Asks for a file name in any case and saves under it, over an existing file only if the user says so. The
/// profile keeps its old name unless it was saved.
bool saveAs(ProfileData& profile, const std::string& directory, QWidget* parent = nullptr);

/// Asks whether the file of that name may be replaced although it is not the one that was loaded.
bool mayReplaceForeign(const std::string& fileName, QWidget* parent = nullptr);

} // namespace profile_saving
