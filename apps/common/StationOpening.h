// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Failure.h"
#include "database/cTolvaDatabase.h"

class CollectingUserInterface;

namespace StationOpening
{
/// Opens the station in the folder, again where it met another program that opened it at the same moment. Failure in
/// words when it cannot be opened. Incomplete station details keep nobody out. userInterface: the one in force; what
/// was reported through it is taken. Deletions through this object are announced to other computers from then on.
void Open(cTolvaDatabase& database, const QString& folder, CollectingUserInterface& userInterface);

/// An error of the record store in words about the station in this folder.
Failure FailureOf(const QString& folder, int errorNumber, const QString& description);
} // namespace StationOpening
