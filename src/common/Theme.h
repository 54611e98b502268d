#pragma once

#include <QPalette>

#include <string_view>

/// Which colours the program has: the desktop's, or its own.
enum class Theme { System, Light, Dark };

namespace theme {

/// The palette of a theme in all groups and roles; an empty one for the desktop's.
QPalette palette(Theme theme);

/// The color of words that say what is wrong, to be read on the palette's windows.
QColor faultColor(const QPalette& palette);

/// Gives the program that theme and restyles everything that is open. With Theme::System it follows the
/// desktop from now on, also when that changes.
void apply(Theme theme);

/// Gives widgets with style sheets the colors of now; such widgets, and what is inside of them, keep those of
/// the time when they got their sheet.
void updateStyleSheets();

/// The text by which a theme is stored.
std::string_view name(Theme theme);

/// Theme::System for a text that is no theme's.
Theme fromName(std::string_view name);

} // namespace theme
