#include "Theme.h"

#include <QApplication>
#include <QWidget>

namespace {

struct RoleColors {
    QPalette::ColorRole role;
    QRgb light;
    QRgb dark;
};

constexpr RoleColors activeColors[] = {
    {QPalette::Window, 0xffefefef, 0xff333539},
    {QPalette::WindowText, 0xff101010, 0xffe6e6e6},
    {QPalette::Base, 0xffffffff, 0xff1b1c1e},
    {QPalette::AlternateBase, 0xfff5f6f7, 0xff27292c},
    {QPalette::Text, 0xff101010, 0xffe6e6e6},
    {QPalette::PlaceholderText, 0xff6a6a6a, 0xff9a9ea4},
    {QPalette::Button, 0xffefefef, 0xff2d3033},
    {QPalette::ButtonText, 0xff101010, 0xffe6e6e6},
    {QPalette::BrightText, 0xffffffff, 0xffffffff},
    {QPalette::Light, 0xffffffff, 0xff55585d},
    {QPalette::Midlight, 0xfff7f7f7, 0xff484b50},
    {QPalette::Mid, 0xffb8b8b8, 0xff2a2c2f},
    {QPalette::Dark, 0xff9f9f9f, 0xff1b1c1e},
    {QPalette::Shadow, 0xff767676, 0xff0b0c0d},
    {QPalette::Highlight, 0xff2a6fb0, 0xff2f6fb0},
    {QPalette::HighlightedText, 0xffffffff, 0xffffffff},
    {QPalette::Link, 0xff1560b0, 0xff6cb2f7},
    {QPalette::LinkVisited, 0xff7a3f9d, 0xffc39bf0},
    {QPalette::ToolTipBase, 0xffffffdc, 0xff46494e},
    {QPalette::ToolTipText, 0xff101010, 0xffe6e6e6},
};

constexpr RoleColors disabledColors[] = {
    {QPalette::WindowText, 0xff8a8a8a, 0xff94989e},
    {QPalette::Text, 0xff8a8a8a, 0xff94989e},
    {QPalette::PlaceholderText, 0xff969696, 0xff7c8086},
    {QPalette::ButtonText, 0xff8a8a8a, 0xff94989e},
    {QPalette::Base, 0xfff5f5f5, 0xff2b2d30},
    {QPalette::Highlight, 0xffb0b0b0, 0xff4a4e54},
    {QPalette::HighlightedText, 0xff404040, 0xffb4b8be},
    {QPalette::Link, 0xff8a8a8a, 0xff94989e},
    {QPalette::LinkVisited, 0xff8a8a8a, 0xff94989e},
};

constexpr struct {
    Theme theme;
    std::string_view name;
} names[] = {{Theme::System, "system"}, {Theme::Light, "light"}, {Theme::Dark, "dark"}};

/// Desktops that change while the program runs may give every widget a whole palette of its own, which no
/// palette of the application gets through to.
void dropPalettesOfTheDesktop()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        const QPalette palette = widget->palette();
        if (widget->testAttribute(Qt::WA_SetPalette) && palette.isBrushSet(QPalette::Active, QPalette::Base)
            && palette.isBrushSet(QPalette::Active, QPalette::Highlight))
            widget->setPalette(QPalette());
    }
}

} // namespace

namespace theme {

QPalette palette(Theme theme)
{
    QPalette palette;
    if (theme == Theme::System)
        return palette;
    const bool isDark = theme == Theme::Dark;
    for (const RoleColors& color : activeColors)
        palette.setColor(QPalette::All, color.role, QColor(isDark ? color.dark : color.light));
    for (const RoleColors& color : disabledColors)
        palette.setColor(QPalette::Disabled, color.role, QColor(isDark ? color.dark : color.light));
    return palette;
}

QColor faultColor(const QPalette& palette)
{
    constexpr int middle = 128;
    return palette.color(QPalette::Window).lightness() < middle ? QColor(255, 130, 130) : QColor(176, 0, 32);
}

void apply(Theme theme)
{
    dropPalettesOfTheDesktop();
    QApplication::setPalette(palette(theme));
}

void updateStyleSheets()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        const QString sheet = widget->styleSheet();
        if (sheet.isEmpty())
            continue;
        widget->setStyleSheet(QString());
        widget->setStyleSheet(sheet);
    }
}

std::string_view name(Theme theme)
{
    for (const auto& entry : names) {
        if (entry.theme == theme)
            return entry.name;
    }
    return {};
}

Theme fromName(std::string_view name)
{
    for (const auto& entry : names) {
        if (entry.name == name)
            return entry.theme;
    }
    return Theme::System;
}

} // namespace theme
