// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLatin1String>

/// The control, which is called by that name from now on.
template <typename Control>
Control* Named(Control* control, const char* name)
{
    control->setObjectName(QLatin1String(name));
    return control;
}
