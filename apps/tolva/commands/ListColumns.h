// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Characters of the columns that the lists of messages and of prizes have alike.
namespace ListColumns
{
inline constexpr int ReferenceWidth = 6;
inline constexpr int DateWidth = 16;
} // namespace ListColumns
