// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QJsonValue>

/// ISO 8601 in universal time, null for none.
QJsonValue JsonDate(Date universal);
