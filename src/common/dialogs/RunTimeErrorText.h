// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"

#include <QString>

/// A run-time error as the user reads it: what happened and what to do, with the number for whoever helps. Errors
/// without words of their own show their description.
QString RunTimeErrorText(const dao::Error& error);
