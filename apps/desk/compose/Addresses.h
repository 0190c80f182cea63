// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"

#include <QString>
#include <QStringList>

/// The boxes To and Cc as people fill them: names, addresses, commas and semicolons.
namespace Addresses
{
/// The elements of a list of recipients, trimmed and without empty ones. Commas and semicolons divide it, but not
/// within quotation marks, angle brackets or comments, and an address in brackets ends its element. Of a group the
/// members; its name goes. Broken text is no error: it stays in the element it stands in.
QStringList Split(const QString& recipients);
/// The bare address of one element: what stands in its angle brackets, or all of it but its comments. In lower case
/// from the @ on.
QString Bare(const QString& element);
/// The name of one element without its quotation marks, or its comment; the bare address where there is neither.
QString DisplayName(const QString& element);
/// A mailbox with its name quoted where it needs it; the address alone for an empty name.
QString Mailbox(const QString& name, const QString& address);
/// The list as it goes out: mailboxes, or bare numbers for text messages, with commas between; what cannot be read
/// stays as it stands.
QString Normalised(const QString& recipients, enMsgType type);
/// Whether mail can be sent there as far as its form tells: a local part, and a domain with a dot in it.
bool IsPlausible(const QString& address);
/// The same for a telephone number: digits, with what people write between them.
bool IsPlausibleNumber(const QString& number);
/// The elements of list whose address is not among those of others nor among the earlier ones, without regard to case.
QStringList Without(const QStringList& list, const QStringList& others);
/// What is wrong with the recipients of a message that is to go out, as a sentence; empty when nothing is.
QString WhyNotSendable(const QString& to, const QString& cc, const QString& bcc, enMsgType type);
} // namespace Addresses
