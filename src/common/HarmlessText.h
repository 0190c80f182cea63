// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QByteArray>
#include <QString>

/// Text that others wrote, made fit for a terminal: nothing in it can steer the terminal or change what stands around
/// it. Control characters (U+0000 to U+001F, U+007F to U+009F) become U+FFFD; marks of the writing direction (U+061C,
/// U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069) go. A first strong isolate that ends on its own line stays with
/// its end, because it keeps its text from reordering its neighbours.
namespace HarmlessText
{

/// On one line: line ends and tabs become blanks. Other blanks stay as they are.
TOLVA_EXPORT QString Line(const QString& text);
/// Line ends and tabs stay; "\r\n" becomes "\n".
TOLVA_EXPORT QString Lines(const QString& text);
/// Goes without any isolate, on one line, with single blanks between its words.
TOLVA_EXPORT QString Words(const QString& text);
/// The octets of a JSON text (UTF-8) with all of these characters written as \uXXXX, which a reader of JSON gives back.
TOLVA_EXPORT QByteArray Json(const QByteArray& json);

} // namespace HarmlessText
