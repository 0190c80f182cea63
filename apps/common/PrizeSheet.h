// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PrizePage.h"

#include <optional>

class cTolvaDatabase;
class clsKVDirectory;

/// The words that a page says of a stored prize.
namespace PrizeSheet
{

/// The template that is meant where none is named.
inline const QString UsualTemplate = QStringLiteral("Prize-Prize sheet");

/// The prize as it is stored at this moment with all its winners, the earliest first; dates in local time. Nothing when
/// there is no such prize. dao::Error when the station or its directory cannot be read.
std::optional<PrizePage::Prize> Read(cTolvaDatabase& database, const clsKVDirectory& directory, qint32 reference);

} // namespace PrizeSheet
