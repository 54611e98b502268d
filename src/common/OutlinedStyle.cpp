#include "OutlinedStyle.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// What outlines are to have; a little more than 3, since Fusion blends them with what is around.
constexpr double leastContrast = 4;

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mix(const QColor& one, const QColor& other, float part)
{
    return QColor::fromRgbF(one.redF() + (other.redF() - one.redF()) * part,
        one.greenF() + (other.greenF() - one.greenF()) * part,
        one.blueF() + (other.blueF() - one.blueF()) * part);
}

/// The color with as much of the text's as it takes to stand out from all that may be around it.
QColor standingOut(const QColor& start, const QPalette& palette)
{
    const QColor text = palette.color(QPalette::WindowText);
    constexpr int steps = 20;
    QColor color = start;
    for (int step = 0; step <= steps; ++step) {
        color = mix(start, text, static_cast<float>(step) / steps);
        const auto contrastTo = [&](QPalette::ColorRole role) {
            return OutlinedStyle::contrast(color, palette.color(role));
        };
        if (std::min({contrastTo(QPalette::Window), contrastTo(QPalette::Base), contrastTo(QPalette::Button)})
            >= leastContrast)
            break;
    }
    return color;
}

/// Fusion makes its outlines from the color of the window by darker(140).
QPalette withOutline(QPalette palette)
{
    const QColor outline = OutlinedStyle::outline(palette);
    palette.setColor(QPalette::Window,
        QColor::fromHsv(
            outline.hsvHue(), outline.hsvSaturation(), std::min(255, outline.value() * 140 / 100)));
    return palette;
}

constexpr std::array outlinedPrimitives{QStyle::PE_IndicatorCheckBox, QStyle::PE_IndicatorRadioButton,
    QStyle::PE_FrameLineEdit, QStyle::PE_PanelButtonCommand};

/// Draws with a copy of an option that has outlines, where it is of one of the given types, else with the
/// option itself.
template <typename... Outlined, typename Option, typename Draw>
void drawOutlined(const Option* option, const Draw& draw)
{
    const auto drawAs = [&]<typename Type>(const Type* ofType) {
        if (!ofType)
            return false;
        Type copy(*ofType);
        copy.palette = withOutline(ofType->palette);
        draw(&copy);
        return true;
    };
    if (!(drawAs(qstyleoption_cast<const Outlined*>(option)) || ...))
        draw(option);
}

} // namespace

void OutlinedStyle::install()
{
    if (QApplication::style()->name().compare(QStringLiteral("fusion"), Qt::CaseInsensitive) == 0)
        QApplication::setStyle(new OutlinedStyle(QStringLiteral("fusion")));
}

double OutlinedStyle::contrast(const QColor& one, const QColor& other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor OutlinedStyle::outline(const QPalette& palette)
{
    return standingOut(palette.color(QPalette::Window), palette);
}

QColor OutlinedStyle::focus(const QPalette& palette)
{
    return standingOut(palette.color(QPalette::Highlight), palette);
}

void OutlinedStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    const auto draw = [&](const QStyleOption* drawn) {
        QProxyStyle::drawPrimitive(element, drawn, painter, widget);
    };
    if (std::find(outlinedPrimitives.begin(), outlinedPrimitives.end(), element) != outlinedPrimitives.end())
        drawOutlined<QStyleOptionButton, QStyleOptionFrame>(option, draw);
    else
        draw(option);
}

void OutlinedStyle::drawControl(
    ControlElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    const auto* area = qobject_cast<const QAbstractScrollArea*>(widget);
    if (element != CE_ShapedFrame || !area || !area->hasFocus() || area->frameShape() == QFrame::NoFrame)
        return;
    painter->setPen(focus(option->palette));
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
}

void OutlinedStyle::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const
{
    drawOutlined<QStyleOptionSpinBox>(option, [&](const QStyleOptionComplex* drawn) {
        QProxyStyle::drawComplexControl(control, drawn, painter, widget);
    });
}

int OutlinedStyle::styleHint(
    StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* data) const
{
    // Fusion's icons are black, also on dark buttons.
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
}
