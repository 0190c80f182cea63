// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QString>

class DeskStation;

/// What somebody else did with a message that is on show, in words; empty while it is where it was. Errors as
/// dao::Error.
QString WhatBecameOf(const cMessage& shown, DeskStation& station);
