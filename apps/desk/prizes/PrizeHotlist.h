// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <array>
#include <optional>

/// The hours of a week as a hotlist keeps them: the seven texts of cPrize, Monday first, divided by "|".
namespace PrizeHotlist
{
QString TextOf(const std::array<QString, 7>& hours);
/// Nothing when the text is no such week: another number of days or characters, or a letter in another hour's place.
std::optional<std::array<QString, 7>> Read(const QString& text);
} // namespace PrizeHotlist
