// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Twips.h"

#include <QWidget>

namespace
{
constexpr double TwipsPerInch = 1440;
}

double Twips::PerPixel(const QWidget& widget)
{
    return TwipsPerInch / widget.logicalDpiX();
}

int Twips::ToPixels(const QWidget& widget, double twips)
{
    return qRound(twips / PerPixel(widget));
}

double Twips::FromPixels(const QWidget& widget, double pixels)
{
    return pixels * PerPixel(widget);
}
