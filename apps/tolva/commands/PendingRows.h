// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "commands/MessageRow.h"

#include <QList>

class cTolvaDatabase;

/// The messages in the Outbox that are marked to be sent and due now, by their numbers. type: "email" or "sms" for
/// those alone, empty for all. Raises dao::Error.
QList<MessageRow> PendingRows(const cTolvaDatabase& station, const QString& type);
