// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/Message.h"

#include <QStringList>

namespace cdo
{

/// Whose mail it is that goes out.
struct OutgoingSender
{
    QString Name;
    QString Address;   ///< Where answers and refusals go.
    QDateTime Now;     ///< For a mail without a date.
    QString MessageID; ///< For a mail without one, with its angle brackets.
};

/// A mail as it is handed to the program that sends it.
struct OutgoingMail
{
    QByteArray Octets;      ///< Line ends are "\n"; no line has more than 998 octets.
    QStringList Recipients; ///< Of To, Cc and Bcc: addresses alone, each once.
    QString Problem;        ///< Why it cannot go out, as a sentence; empty when it can.
};

/// The stored mail made ready: no Bcc in it, from the sender's address, with a date and a Message-ID, and in seven bits
/// where that can be had (RFC 5322, RFC 2045). What needs no change of these stays as it is.
OutgoingMail TOLVA_EXPORT MakeOutgoing(const Message& stored, const OutgoingSender& sender);

} // namespace cdo
