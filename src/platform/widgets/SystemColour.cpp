// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/SystemColour.h"

#include "common/GeneralHelper.h"

#include <QPalette>

bool SystemColour::IsSystemColour(qint32 colour)
{
    return colour < 0;
}

QColor SystemColour::ToColour(qint32 colour, const QPalette& palette)
{
    if (!IsSystemColour(colour))
        return QColor(GeneralHelper::RedOf(colour), GeneralHelper::GreenOf(colour), GeneralHelper::BlueOf(colour));
    switch (colour) {
    case WindowBackground:
        return palette.color(QPalette::Base);
    case WindowText:
        return palette.color(QPalette::Text);
    case Highlight:
        return palette.color(QPalette::Highlight);
    case HighlightText:
        return palette.color(QPalette::HighlightedText);
    case ButtonText:
        return palette.color(QPalette::ButtonText);
    default:
        return palette.color(QPalette::Button);
    }
}

qint32 SystemColour::FromColour(const QColor& colour)
{
    return colour.red() | colour.green() << 8 | colour.blue() << 16;
}
