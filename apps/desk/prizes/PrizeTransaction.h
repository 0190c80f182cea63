// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

class DeskStation;

namespace PrizeTransaction
{
/// Runs work in one transaction, in which nobody else changes the station from the beginning on, the pointer busy and
/// the database's events and boxes off. Commits when it answers true and takes everything back when it answers false or
/// raises dao::Error, which goes to the caller. The answer of the work. Who works in it announces the change itself,
/// afterwards.
bool Run(DeskStation& station, const std::function<bool()>& work);
} // namespace PrizeTransaction
