// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/postgres/ConnectString.h"

/// A station's file whose rows are on a server: a short text with a mark in its first line and the connect string, the
/// schema included, in its second. No password is ever in it.
namespace dao::postgres
{

bool IsLinkFile(const QByteArray& firstOctets);
/// Errors: 3051 for a file that cannot be read, 3343 for one that is no such file or holds a string that is none.
ConnectString ReadLinkFile(const QString& file);
/// Under a name of its own, and on the disk, before it gets its name; 3051 when a file of that name stands already.
void WriteLinkFile(const QString& file, const ConnectString& connect);

} // namespace dao::postgres
