// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

/// Header values between their form in the octets (RFC 2047, folded) and the text that people read.
namespace cdo
{

/// The value with neighbouring base64 words of one character set made into one. GMime up to 3.2.13 reads such words as
/// one stretch of base64 and stops at the first padding, which would lose the rest.
QByteArray WithJoinedBase64Words(const QByteArray& value);

/// The value as text on one line. Encoded words are decoded, raw 8-bit text is read as UTF-8 or else windows-1252.
QString DecodeHeader(const QByteArray& value);

/// The same for a list of addresses. A name that was encoded comes back in quotation marks where it needs them, so that
/// a comma or bracket inside a name is never taken for the end of an address.
QString DecodeAddresses(const QByteArray& value);

/// The first mailbox of a list of addresses; empty when there is none.
QString FirstMailbox(const QByteArray& value);

/// Whether the field of this name holds addresses.
bool IsAddressField(QByteArrayView name);

/// The whole field: name, encoded and folded value, line breaks. Line ends, NUL and other control characters in the
/// text become blanks.
QByteArray EncodeField(const QByteArray& name, const QString& text, const QByteArray& lineBreak);

/// A Date header's value in universal time; invalid when it is no date, or one outside the years 1900 to 2199.
QDateTime DecodeDate(const QByteArray& value);

/// The date at the end of a Received header, behind its semicolon, in universal time; invalid when there is none.
QDateTime DecodeReceivedDate(const QByteArray& value);

/// The value of a Date header; the time in universal time. Empty for an invalid one.
QString EncodeDate(const QDateTime& time);

} // namespace cdo
