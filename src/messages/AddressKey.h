// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"

#include <QString>

/// The search key of an address list: the bare addresses, each between vertical bars, in their own case; empty for an
/// empty list. Addresses are what stands between the commas; a name before "<" is dropped, an element that starts with
/// "<" or has none stays as it stands. SMS numbers are normalised and lose their leading zeros, so that a number with
/// its national zero meets the same number without. country: in whose form the numbers are read; empty for the one of
/// the program (GeneralHelper::PhoneRegion).
QString MakeAddressKey(const QString& addresses, enMsgType type, const QString& country = QString());

/// The key cut after the last whole address that fits into size characters.
QString FitAddressKey(const QString& key, int size);
