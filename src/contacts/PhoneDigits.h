// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The digits of a text as 0 to 9, whatever script they were written in; what stands between them is left out.
QString PhoneDigits(const QString& text);
