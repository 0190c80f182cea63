// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

enum class IncomingKind
{
    Mail,
    TextMessage ///< The file form of one SMS.
};

/// One message as a source delivers it, before it is a message of the station.
struct IncomingMessage
{
    QString Name;      ///< What the user knows it by: the file, or the file and the number in it.
    QByteArray Octets; ///< As they stand in the source.
    QString Problem;   ///< Why it could not be read; then Octets count for nothing.
    IncomingKind Kind = IncomingKind::Mail;
    QString File;        ///< What holds this message and nothing else; empty for one of an archive or standard input.
    bool IsRead = false; ///< The source marks it as seen.
    bool IsHandedOver = false; ///< On standard input: whoever sent it there has no other copy.
};

/// Why these octets are no mail message, empty when they are one. Broken mail is mail: a single header field among its
/// first lines is enough.
QString WhyNotMail(const QByteArray& octets);

/// Takes away the "From " line that delivery agents put before a message; it is no part of it, unless it is all.
void RemoveEnvelopeLine(QByteArray& octets);
