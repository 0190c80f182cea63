// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace MachineHelper
{

/// This computer's name; never empty.
QString ComputerName();

} // namespace MachineHelper
