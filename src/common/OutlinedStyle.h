#pragma once

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

/// Draws Fusion's controls with outlines that stand out from what is around and inside of them, by a contrast
/// of 3:1 at least (WCAG 2.1, 1.4.11). Fusion derives outlines from the window's color alone, which leaves
/// boxes that are not ticked nearly invisible in dark themes. Other styles are for the desktop to care for.
class OutlinedStyle : public QProxyStyle {
    Q_OBJECT

public:
    /// Takes the style over that the application has now, if it is Fusion; does nothing otherwise.
    static void install();

    /// The color of outlines for a palette.
    static QColor outline(const QPalette& palette);
    /// The color of what has the focus, for a palette.
    static QColor focus(const QPalette& palette);
    /// The contrast of two opaque colors, from 1 to 21 (WCAG 2.1, relative luminance).
    static double contrast(const QColor& one, const QColor& other);

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget = nullptr) const override;
    /// Lists, trees and texts show by their frames that they have the focus, as lines of text do.
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
        const QWidget* widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption* option = nullptr, const QWidget* widget = nullptr,
        QStyleHintReturn* data = nullptr) const override;

private:
    using QProxyStyle::QProxyStyle;
};
