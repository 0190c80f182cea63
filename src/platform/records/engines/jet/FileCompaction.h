// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace dao::jet
{

/// Writes everything that a file holds, the objects of other programs included, into a new one without gaps, its
/// indexes built anew. Definitions stay on their pages, for they are the numbers by which objects know each other.
/// target: there and empty. The result is examined. Errors: those of opening and of writing, 3049 when the source is
/// damaged or the values of an index that may have none come twice, 3260 when it is changed meanwhile.
void CompactFile(const QString& source, const QString& target);

} // namespace dao::jet
