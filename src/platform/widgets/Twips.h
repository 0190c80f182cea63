// SPDX-License-Identifier: Apache-2.0
#pragma once

class QWidget;

/// Lengths of the controls' layouts in twips, 1/1440 inch, at the logical resolution of the screen a widget is on.
namespace Twips
{
double PerPixel(const QWidget& widget);
/// Rounded to the nearest pixel.
int ToPixels(const QWidget& widget, double twips);
double FromPixels(const QWidget& widget, double pixels);
} // namespace Twips
