// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

class cMessage;

/// By what a message that was handed over is known again under its number: its Message-ID, which a desk gives anew each
/// time that somebody puts a message into the Outbox; without one a digest of what its recipients see of it. The marks
/// of highlight words, flags and dates of the row change nothing in it.
TOLVA_EXPORT QString OutgoingIdentity(const cMessage& message);
