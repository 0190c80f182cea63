// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Octets.h"

namespace dao::jet
{

/// Texts as they stand in a file: UTF-16, or marked and one octet a character. Fault for half a character.
QByteArray Utf8FromStored(const OctetView& stored);
/// mayCompress: whether the column allows the short form. It is used for 3 to 1024 characters that have it all.
QByteArray StoredFromText(const QString& text, bool mayCompress);

} // namespace dao::jet
