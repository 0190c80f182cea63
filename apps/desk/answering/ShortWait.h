// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// What the window does in the directory beside its work waits no longer than anybody sees, and is done again later.
namespace ShortWait
{
inline constexpr qint64 Milliseconds = 30;
inline constexpr int AgainMilliseconds = 300;
} // namespace ShortWait
