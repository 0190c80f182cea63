#pragma once

#include "common/Enumerations.h"

#include <QString>
#include <QStringList>

/// The boxes To and Cc as people fill them: names, addresses, commas and semicolons.
namespace Addresses
{
/// The elements of a list of recipients, trimmed and without empty ones. Commas and semicolons divide it, but not
/// within quotation marks or angle brackets.
QStringList Split(const QString& recipients);
/// The bare address of one element: what stands in its angle brackets, or all of it. In lower case from the @ on.
QString Bare(const QString& element);
/// The name of one element without its quotation marks; the bare address where there is none.
QString DisplayName(const QString& element);
/// A mailbox with its name quoted where it needs it; the address alone for an empty name.
QString Mailbox(const QString& name, const QString& address);
/// Whether mail can be sent there as far as its form tells: a local part, and a domain with a dot in it.
bool IsPlausible(const QString& address);
/// The same for a telephone number: digits, with what people write between them.
bool IsPlausibleNumber(const QString& number);
/// The elements of list whose address is not among those of others nor among the earlier ones, without regard to case.
QStringList Without(const QStringList& list, const QStringList& others);
/// What is wrong with the recipients of a message that is to go out, as a sentence; empty when nothing is.
QString WhyNotSendable(const QString& to, const QString& cc, const QString& bcc, enMsgType type);
} // namespace Addresses
