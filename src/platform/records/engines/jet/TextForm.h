// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Octets.h"

namespace dao::jet
{

/// Texts as they stand in a file: UTF-16, or marked and one octet a character. Fault for half a character.
QByteArray Utf8FromStored(const OctetView& stored);
/// So many stored octets tell at least so many octets of UTF-8, or all there are.
inline constexpr qsizetype StoredOctetsFor(qsizetype utf8Octets)
{
    return 2 + 2 * utf8Octets;
}
/// Whether the beginning of a stored text reads as the beginning of the text: it does where no octet changes what those
/// behind it mean.
bool ReadsFromItsBeginning(const OctetView& beginning);
/// mayCompress: whether the column allows the short form. It is used for 3 to 1024 characters that have it all.
QByteArray StoredFromText(const QString& text, bool mayCompress);
/// A name as definitions and properties have it: its length in octets, and its units.
void AppendName(QByteArray& octets, const QString& name);

} // namespace dao::jet
