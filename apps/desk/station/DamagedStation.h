// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// A station whose file cannot be opened because it is damaged.
namespace DamagedStation
{
/// Offers the newest backup that can be read, and puts it in the damaged file's place when the user agrees; the damaged
/// file is kept. problem: why the station does not open, which the user is told in any case. What was restored, in
/// words for when the station is open; empty when nothing was.
QString OfferBackup(const QString& folder, const QString& problem);
/// made: when the backup was. content: what the station holds now. keepName: where the damaged file is.
QString RestoredWords(const QString& made, const QString& content, const QString& keepName);
} // namespace DamagedStation
