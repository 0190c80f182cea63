// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QByteArray>

/// What the way of a mail leaves on it: fields that servers, filters and fetchers put before it, and line breaks.
namespace cdo
{

/// Whether a field of this name, whatever its case, is put on a mail on its way. Not one that its sender writes.
bool TOLVA_EXPORT IsTraceField(QByteArrayView name);

/// Whether two mails are the same but for trace fields and for "\n" in the place of "\r\n": one mail that came by two
/// routes. Copies neither.
bool TOLVA_EXPORT AreSameButForTrace(const QByteArray& one, const QByteArray& other);

} // namespace cdo
