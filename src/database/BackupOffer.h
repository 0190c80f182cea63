// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Offers the newest backup that reads in place of a station's database that does not, and puts it there when the user
/// agrees. failure: what reading the database gave. 0 when it was replaced, otherwise failure where nothing was tried,
/// -1 or a negated error number. Nothing here throws.
qint32 OfferBackup(const QString& fileName, const QString& connect, qint32 failure, bool silent);
