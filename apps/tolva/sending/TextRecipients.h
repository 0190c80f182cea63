// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/Message.h"

#include <QStringList>

/// The numbers that a text message goes to, in digits, each once; empty when there is none or one of them is no number.
/// They come from what listeners' telephones and networks said, and programs are started with them.
QStringList TextRecipients(const cdo::Message& message);

/// What it says.
QString TextOfTextMessage(const cdo::Message& message);
