#pragma once

#include <string>
#include <string_view>

/// The key paths under which the program keeps its preferences, all in one place.
namespace preference_keys {

/// "Corvale" and the version, the top-level dict of everything that a new version starts afresh.
inline const std::string& productPrefix()
{
    static const std::string prefix = "Corvale " CORVALE_VERSION;
    return prefix;
}

/// A key text behind the product prefix: prefixed(guiFont) is "Corvale <version>/gui_font".
inline std::string prefixed(std::string_view keyText)
{
    return productPrefix() + std::string(keyText);
}

/// The store's name, which is also that of its file.
inline constexpr const char* storeName = "Corvale";

// Behind the product prefix, strings unless noted.
inline constexpr std::string_view currentProfile = "/current_profile";
inline constexpr std::string_view guiFont = "/gui_font";
inline constexpr std::string_view profilesDirectory = "/profiles_directory";
/// Boolean, false where absent.
inline constexpr std::string_view strictContextMode = "/strict_context_mode";
/// Reserved: nothing reads or writes it.
inline constexpr std::string_view radeonHdHack = "/radeon_hd_hack";
/// Boolean, true where absent.
inline constexpr std::string_view showSplash = "/About/ShowSplash";
/// "system", "light" or "dark"; "system" where absent.
inline constexpr std::string_view theme = "/theme";
/// Array of strings, the most recent first.
inline constexpr std::string_view recentFiles = "/RecentFiles";

// As they stand.
/// Boolean, true where absent.
inline constexpr std::string_view collectUsage = "Stats/CollectUsage";
/// Followed by a document's name; where the user found that document.
inline constexpr std::string_view openDocsPrefix = "OpenDocs/";

} // namespace preference_keys
