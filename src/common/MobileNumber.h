// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

/// Whether a number is one that a mobile telephone answers to, as far as its country's ranges tell; where they do not
/// tell mobile numbers from others, as in North America, all of those count. False for landlines, premium and free
/// numbers, short codes, senders' names, and for what is more than one number or has an extension. region: that of the
/// station (cTolvaDatabase::StationCountry); empty for GeneralHelper::PhoneRegion.
TOLVA_EXPORT bool IsMobileNumber(const QString& number, const QString& region = QString());
