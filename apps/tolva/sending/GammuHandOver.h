// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sending/HandOver.h"

/// Hands a text for one number to gammu-smsd-inject, which is the first of these words, and looks whether it lies whole
/// in the outbox of the daemon: the program says that it wrote it also when the disk is full, and cuts what is longer
/// than it can carry. SetUp when it could not put it there.
HandOverResult HandOverToGammu(const QStringList& program, const QString& number, const QString& text, int seconds);
