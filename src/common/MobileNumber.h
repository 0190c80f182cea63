// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

/// Whether a number is one that a mobile telephone answers to, as far as its country's ranges tell; where they do not
/// tell mobile numbers from others, as in North America, all of those count. False for landlines, premium and free
/// numbers, short codes, senders' names, and for what is more than one number, has an extension or has digits that are
/// not dialled: "+44 (0)7700 900123". region: that of the station (cTolvaDatabase::StationCountry); empty for
/// GeneralHelper::PhoneRegion.
TOLVA_EXPORT bool IsMobileNumber(const QString& number, const QString& region = QString());

/// Whether a number has the country code of the region, which some countries share: that of the United States is that
/// of Canada and of islands in the Caribbean. False for what is no number.
TOLVA_EXPORT bool IsNumberOfCountry(const QString& number, const QString& region = QString());
