// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace dao::postgres
{

/// Whether libpq, which is loaded when it is needed, is on this computer. Without it each of its functions raises 3251.
bool HasLibrary();
/// What is said without it.
QString LibraryIsMissing();

} // namespace dao::postgres
