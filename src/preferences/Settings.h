#pragma once

#include "PlistValues.h"

#include <string>
#include <string_view>

/// A value that the program keeps in its preferences: where it stands, and what holds where it is absent or
/// of another type.
template <typename T> struct Setting {
    using Default = T (*)();

    std::string keyPath;
    /// Called at each reading.
    Default defaultValue = [] {
        return T();
    };
    /// Whether an empty value counts as none.
    bool isAbsentWhenEmpty = false;
};

/// Every setting of the program, each with those who read and write it.
namespace settings {

/// The store's name, which is also that of its file.
inline constexpr const char* storeName = "Corvale";

/// A key text behind the product's name and version, such as "Corvale 1.2.3/gui_font": a new version starts
/// with fresh settings of this kind.
std::string ofThisVersion(std::string_view keyText);

// Defaults that are not simply empty or false.
bool alwaysTrue();
std::string systemTheme();
std::string everyNotification();
/// The environment variable CORVALE_PROFILE_PATH, else nothing.
std::string profilesDirectoryOfEnvironment();

/// Key of the chosen profile, empty for none. ProfileCatalogue.
inline const Setting<std::string> currentProfile{ofThisVersion("/current_profile")};

/// Family of the console font. MainWindow, which takes the desktop's fixed-width font for an empty one.
inline const Setting<std::string> guiFont{ofThisVersion("/gui_font")};

/// Points by which the console's font is larger than the application's, a whole number. ConsoleFontSize.
inline const Setting<std::string> consoleFontPoints{ofThisVersion("/console_font_points")};

/// The folder of the user's profiles; the default holds for an empty one as well. Read by ProfileCatalogue
/// and DlgPreferences, written by DlgPreferences and by Controller when it asks for the folder.
inline const Setting<std::string> profilesDirectory{
    ofThisVersion("/profiles_directory"), profilesDirectoryOfEnvironment, true};

/// Whether contexts are created strictly. DlgPreferences.
inline const Setting<bool> strictContextMode{ofThisVersion("/strict_context_mode")};

/// Reserved: it has no type, and nothing reads or writes it.
inline const std::string radeonHdHackKeyPath = ofThisVersion("/radeon_hd_hack");

/// Whether the about box comes when the program starts. AboutBox.
inline const Setting<bool> showSplash{ofThisVersion("/About/ShowSplash"), alwaysTrue};

/// Name of the theme: "system", "light" or "dark". ThemeMenu.
inline const Setting<std::string> theme{ofThisVersion("/theme"), systemTheme};

/// What the desktop tells of: "off", "crashes" or "errors", which is everything. DesktopNotifier.
inline const Setting<std::string> notifications{ofThisVersion("/notifications"), everyNotification};

/// Paths of the profile files used last, the most recent first. RecentFilesMenu.
inline const Setting<property_list::List> recentFiles{ofThisVersion("/RecentFiles")};

/// Paths of the session files used last, the most recent first. RecentFilesMenu.
inline const Setting<property_list::List> recentSessions{ofThisVersion("/recent_sessions")};

/// Whether what every client sends is kept in the user's folder of sessions. SessionActions.
inline const Setting<bool> recordSessions{ofThisVersion("/record_sessions")};

/// Programs that were run last, the most recent first, each as ProgramRun::toText() gives it. RecentRuns.
inline const Setting<property_list::List> recentRuns{ofThisVersion("/recent_runs")};

/// Filters of error lists with their names, each as KeptFilters writes it. KeptFilters.
inline const Setting<property_list::List> errorFilters{ofThisVersion("/error_filters")};

// What WindowState remembers of the main window.
/// As QWidget::saveGeometry() gives it.
inline const Setting<property_list::Data> windowGeometry{ofThisVersion("/window/geometry")};
/// Object name of the chosen page.
inline const Setting<std::string> windowPage{ofThisVersion("/window/page")};
/// As QSplitter::saveState() gives them.
inline const Setting<property_list::Data> profileSplitter{ofThisVersion("/window/profile_splitter")};
inline const Setting<property_list::Data> profileListsSplitter{
    ofThisVersion("/window/profile_lists_splitter")};
/// As QHeaderView::saveState() gives it.
inline const Setting<property_list::Data> errorListColumns{ofThisVersion("/window/error_list_columns")};
/// Of the pages of contexts, as above.
inline const Setting<property_list::Data> contextSplitter{ofThisVersion("/window/context_splitter")};
inline const Setting<property_list::Data> contextColumns{ofThisVersion("/window/context_columns")};
inline const Setting<bool> autoCloseTabs{ofThisVersion("/window/auto_close_tabs")};
inline const Setting<bool> consoleMargin{ofThisVersion("/window/console_margin"), alwaysTrue};
inline const Setting<bool> foldRepeats{ofThisVersion("/window/fold_repeats")};
inline const Setting<bool> foldGroups{ofThisVersion("/window/fold_groups")};
inline const Setting<bool> showWarnings{ofThisVersion("/window/show_warnings"), alwaysTrue};
inline const Setting<bool> showErrors{ofThisVersion("/window/show_errors"), alwaysTrue};

/// Whether usage may be collected. Read by TSRStats and FeedbackDialog, written by FeedbackDialog.
inline const Setting<bool> collectUsage{"Stats/CollectUsage", alwaysTrue};

/// Where the user found a document of the product, by the document's file name. DocumentationOpener.
Setting<std::string> documentPath(const std::string& document);

} // namespace settings
