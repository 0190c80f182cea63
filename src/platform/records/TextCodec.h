// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

/// Text between memory (UTF-16) and storage (UTF-8), without loss in either direction: half a surrogate pair, which a
/// subject cut in the middle of an emoji leaves behind, is stored as the three octets of its code and comes back as it
/// was. Pure functions; any thread.
namespace dao
{

QByteArray TextToUtf8(const QString& text);
QString TextFromUtf8(std::string_view utf8);

/// Octets as characters U+0000 to U+00FF. Plain ASCII is returned as the same array, without a copy.
QByteArray OctetsToUtf8(const QByteArray& octets);
/// The reverse. Error 13 when a character is above U+00FF. The result shares utf8 where it is plain ASCII.
QByteArray OctetsFromUtf8(const QByteArray& utf8);
/// The same, null when a character is above U+00FF or the text is no UTF-8. Takes no more room than the octets do.
QByteArray OctetsIfAll(std::string_view utf8);
/// The same of what may be no such text: what is no character up to U+00FF stays as its octets are.
QByteArray OctetsFromAnything(const QByteArray& utf8);

} // namespace dao
