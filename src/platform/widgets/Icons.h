// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QIcon>
#include <QString>
#include <QStringList>

/// The program's own icons, drawn on a grid of 16. Their lines take the palette's text colour at the moment of
/// painting, so that they stand out on a light and on a dark ground, on a selected row and on a disabled button; they
/// are sharp at every size and device pixel ratio. After the QApplication is made, on its thread.
namespace Icons
{
/// Of icons in bars, rows and notices, in device-independent pixels.
inline constexpr int SmallSide = 16;

/// key: "reply", "trashfull" and so on, without regard to case. Null for a key that has no icon.
TOLVA_EXPORT QIcon Get(const QString& key);
/// All keys, sorted.
TOLVA_EXPORT QStringList Keys();
} // namespace Icons
