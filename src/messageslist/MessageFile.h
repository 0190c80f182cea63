// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

/// Writes the message's octets as they are, over a file that is there. A missing message, an empty name and a missing
/// folder leave no file and are no error. dao::Error when the file cannot be
/// written: 3026 for a full disk, 3043 for a failing one, else 3051.
void SaveMessageAsEml(const cMessagePtr& message, const QString& fileName);
/// An unsaved message with the file's content; null for what is empty, missing, unreadable, too large or no mail.
cMessagePtr LoadMessageFromEml(const QString& fileName);
