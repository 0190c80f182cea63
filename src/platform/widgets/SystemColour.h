// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>

class QPalette;

/// Colours as the records and controls hold them: 32 bits with red in the low byte (255 is pure red), and a value of
/// the form 0x8000.... for a colour of the desktop, which follows its theme.
namespace SystemColour
{
constexpr qint32 WindowBackground = static_cast<qint32>(0x80000005U);
constexpr qint32 WindowText = static_cast<qint32>(0x80000008U);
constexpr qint32 Highlight = static_cast<qint32>(0x8000000DU);
constexpr qint32 HighlightText = static_cast<qint32>(0x8000000EU);
constexpr qint32 ButtonFace = static_cast<qint32>(0x8000000FU);
constexpr qint32 ButtonText = static_cast<qint32>(0x80000012U);

bool IsSystemColour(qint32 colour);
/// The colour to draw with; a colour of the desktop that is not among those above is the button face.
QColor ToColour(qint32 colour, const QPalette& palette);
/// Never a colour of the desktop.
qint32 FromColour(const QColor& colour);
} // namespace SystemColour
