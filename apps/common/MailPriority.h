// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/Message.h"

/// Of a message that cannot wait.
inline constexpr qint32 UrgentPriority = 1;

/// What a mail's own header says of its priority: -1 low, 0, 1 urgent.
inline qint32 MailPriority(const cdo::Message& mail)
{
    return mail.Field(QStringLiteral("urn:schemas:httpmail:priority")).toInt();
}
