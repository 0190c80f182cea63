// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"

/// Whether a folder holds what the station itself writes: such a message is told by whom it goes to.
inline bool IsOwnFolder(qint32 folder)
{
    return folder == tmcSent || folder == tmcOutbox || folder == tmcDrafts;
}
