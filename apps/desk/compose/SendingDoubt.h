// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Composition.h"

/// Why its writer may not mean to send this yet, as a sentence: nothing was written, or a file is missing that the text
/// speaks of. Empty where there is nothing to ask. begun: the message as its window opened with it, with what is
/// quoted.
QString SendingDoubt(const Composition& written, const Composition& begun);
